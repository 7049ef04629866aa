#include "ui/about_dialog.h"

#include "ui/xp_button.h"
#include "ui/tool_window.h"

#include <QDesktopServices>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QUrl>
#include <QVBoxLayout>

namespace quillon::ui {
namespace {

constexpr const char* kMakerSite = "https://tarnwick-soft.example.org/";
constexpr const char* kContributorSite = "https://ostrander.example.org/";

// The program logo: a quill over a wave, drawn in code.
QPixmap Logo() {
    QPixmap pm(64, 64);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(44, 104, 168));
    p.drawEllipse(QRectF(2, 2, 60, 60));
    p.setPen(QPen(QColor(240, 246, 255), 3, Qt::SolidLine, Qt::RoundCap));
    QPainterPath wave;
    wave.moveTo(12, 44);
    wave.cubicTo(20, 38, 26, 50, 34, 44);
    wave.cubicTo(42, 38, 46, 50, 52, 44);
    p.setBrush(Qt::NoBrush);
    p.drawPath(wave);
    QPainterPath quill;
    quill.moveTo(22, 38);
    quill.cubicTo(26, 22, 38, 12, 50, 10);
    quill.cubicTo(46, 22, 36, 32, 22, 38);
    p.setPen(QPen(QColor(255, 255, 255), 1));
    p.setBrush(QColor(250, 236, 200));
    p.drawPath(quill);
    return pm;
}

QLabel* Link(const QString& text, const char* url, const QString& name, QWidget* parent) {
    auto* label = new QLabel(QStringLiteral("<a href=\"%1\">%2</a>").arg(QString::fromUtf8(url), text), parent);
    label->setObjectName(name);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    // The site opens in the default browser; a failure is not reported.
    QObject::connect(label, &QLabel::linkActivated, label, [](const QString& link) { QDesktopServices::openUrl(QUrl(link)); });
    return label;
}

QLabel* Heading(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont f = label->font();
    f.setBold(true);
    label->setFont(f);
    return label;
}

}  // namespace

ProgramVersion CurrentVersion() { return {QUILLON_VERSION_MAJOR, QUILLON_VERSION_MINOR, QUILLON_VERSION_REVISION}; }

QString VersionCaption(const ProgramVersion& v) { return QStringLiteral("Version: %1.%2").arg(v.major).arg(v.minor); }

QString BuildCaption(const ProgramVersion& v) { return QStringLiteral("Build: %1").arg(v.revision); }

AboutDialog::AboutDialog(QWidget* parent, ProgramVersion version)
    : QDialog(parent, kToolWindowFlags) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About Quillon"));
    setModal(true);

    auto* layout = new QVBoxLayout(this);
    auto* logo = new QLabel(this);
    logo->setObjectName(QStringLiteral("Image7"));
    logo->setPixmap(Logo());
    logo->setToolTip(QStringLiteral("Quillon logo"));
    logo->setAlignment(Qt::AlignCenter);
    layout->addWidget(logo);

    auto* title = Heading(QStringLiteral("Quillon"), this);
    title->setAlignment(Qt::AlignCenter);
    layout->addWidget(title);
    auto* versionLabel = new QLabel(VersionCaption(version), this);
    versionLabel->setObjectName(QStringLiteral("Label2"));
    auto* buildLabel = new QLabel(BuildCaption(version), this);
    buildLabel->setObjectName(QStringLiteral("Label17"));
    for (QLabel* l : {versionLabel, buildLabel}) {
        l->setAlignment(Qt::AlignCenter);
        layout->addWidget(l);
    }

    layout->addSpacing(8);
    layout->addWidget(Heading(QStringLiteral("Programmed by:"), this));
    layout->addWidget(Link(QStringLiteral("Tarnwick-Soft"), kMakerSite, QStringLiteral("Label1"), this));
    layout->addWidget(Heading(QStringLiteral("Special Thanx:"), this));
    layout->addWidget(Link(QStringLiteral("Mira Ostrander"), kContributorSite, QStringLiteral("Label4"), this));
    layout->addWidget(Heading(QStringLiteral("Greetz: (alphabetical order)"), this));
    layout->addWidget(new QLabel(QStringLiteral("Bel Akerfeldt, Corin Hale, Dax Morrow,\nJune Pallister, Tobin Quayle"), this));
    layout->addStretch();

    auto* ok = new XPButton(QStringLiteral("Command1"), QStringLiteral("&OK"), this);
    connect(ok, &XPButton::clicked, this, &QDialog::accept);
    layout->addWidget(ok);

    FixClientSize(this, 6615, 6225);
}

}  // namespace quillon::ui
