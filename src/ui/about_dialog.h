#pragma once
// frmAbout, "About Quillon": version, build, the maker's and a contributor's
// web sites as links, and the credits.
#include <QDialog>

class QLabel;

namespace quillon::ui {

struct ProgramVersion {
    int major, minor, revision;
};
// The program's own version, from the build.
ProgramVersion CurrentVersion();
// "Version: 3.1" and "Build: 1" for version 3.1.x.1.
QString VersionCaption(const ProgramVersion& v);
QString BuildCaption(const ProgramVersion& v);

class AboutDialog : public QDialog {
public:
    explicit AboutDialog(QWidget* parent = nullptr, ProgramVersion version = CurrentVersion());
};

}  // namespace quillon::ui
