#include "ui/explanation_dialogs.h"

#include "ui/text_bridge.h"
#include "ui/xp_button.h"
#include "ui/tool_window.h"

#include "edit/explanations.h"

#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace quillon::ui {
namespace {


// The pictures Image1 to Image9: the text menu's entries as the menu shows them.
constexpr const char* kPictures[9] = {"TextMenu", "[PLAYER]", "[RIVAL]", "[TEAM1]", "[TEAM2]",
                                      "[POKéBLOCK]", "[SMALL]", "Colors \u25B8", "HEX character..."};

}  // namespace

MenuExplanationDialog::MenuExplanationDialog(Prompter& prompter, QWidget* parent)
    : QDialog(parent, kToolWindowFlags), prompter_(prompter) {
    setObjectName(QStringLiteral("frmMenuExpl"));
    setWindowTitle(Q(kMenuExplCaption));
    setModal(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(Q(kMenuExplLabel), this));
    auto* grid = new QGridLayout;
    for (int i = 1; i <= 9; ++i) {
        auto* picture = new QLabel(QString::fromUtf8(kPictures[i - 1]), this);
        picture->setObjectName(QStringLiteral("Image%1").arg(i));
        picture->setFrameShape(QFrame::StyledPanel);
        picture->setMinimumHeight(24);
        picture->setStyleSheet(i == 1 ? QStringLiteral("background: #2c68a8; color: white; font-weight: bold; padding: 2px 6px;")
                                      : QStringLiteral("background: #f3f3f3; padding: 2px 6px;"));
        if (i > 1) picture->setCursor(Qt::PointingHandCursor);
        picture->installEventFilter(this);
        grid->addWidget(picture, (i - 1) / 3, (i - 1) % 3);
    }
    layout->addLayout(grid);
    layout->addStretch();
    auto* ok = new XPButton(QStringLiteral("Command1"), QStringLiteral("&OK"), this);
    connect(ok, &XPButton::clicked, this, &QDialog::accept);
    layout->addWidget(ok);
    FixClientSize(this, 5295, 4140);
}

bool MenuExplanationDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {  // pictures act on a left click only
        const QString name = watched->objectName();
        if (name.startsWith(QStringLiteral("Image"))) {
            const int image = name.mid(5).toInt();
            if (ClickMenuExplanation(image, prompter_) == ExplanationClick::OpenColorWindow) {
                ColorExplanationDialog colors(this);
                colors.exec();
            }
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

ColorExplanationDialog::ColorExplanationDialog(QWidget* parent)
    : QDialog(parent, kToolWindowFlags) {
    setObjectName(QStringLiteral("frmColorExpl"));
    setWindowTitle(Q(kColorExplCaption));
    setModal(true);
    auto* layout = new QVBoxLayout(this);
    auto* row = new QHBoxLayout;
    const char* samples[3] = {"[BLACK]Seaside town", "[RED]Seaside town", "[BLUE]Seaside town"};
    const char* colours[3] = {"#303030", "#d02828", "#2850d0"};
    for (int i = 0; i < 3; ++i) {
        auto* frame = new QGroupBox(Q(kColorExplFrames[static_cast<std::size_t>(i)]), this);
        auto* inner = new QVBoxLayout(frame);
        auto* sample = new QLabel(QString::fromUtf8(samples[i]), frame);
        sample->setStyleSheet(QStringLiteral("color: %1; font-weight: bold;").arg(QString::fromUtf8(colours[i])));
        inner->addWidget(sample);
        row->addWidget(frame);
    }
    layout->addLayout(row);
    auto* label = new QLabel(Q(kColorExplLabel), this);
    label->setWordWrap(true);
    layout->addWidget(label);
    auto* ok = new XPButton(QStringLiteral("Command1"), QStringLiteral("&OK"), this);
    connect(ok, &XPButton::clicked, this, &QDialog::accept);
    layout->addWidget(ok);
    FixClientSize(this, 12030, 3570);
}

}  // namespace quillon::ui
