#include "ui/update_dialog.h"

#include "ui/xp_button.h"

#include "ui/main_window.h"
#include "ui/text_bridge.h"

#include <QFrame>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>
#include <QVBoxLayout>

namespace quillon::ui {
namespace {

// Client size in twips.
constexpr int kClientWidth = 7425;
constexpr int kClientHeight = 4770;

QLabel* Label(const QString& name, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    return label;
}

}  // namespace

UpdateDialog::UpdateDialog(Prompter& prompter, const std::filesystem::path& programFolder,
                           const std::string& baseUrl, QWidget* parent, const std::string& currentVersion)
    : QDialog(parent, Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint),
      form_(prompter, programFolder, baseUrl, currentVersion) {
    setObjectName(QStringLiteral("frmInternetUpdate"));
    setWindowTitle(Q(kUpdateCaption));
    setModal(true);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 10);
    layout->setSpacing(6);

    // The white title band of the wizard.
    auto* band = new QFrame(this);
    band->setObjectName(QStringLiteral("titleBand"));
    band->setAutoFillBackground(true);
    QPalette white = band->palette();
    white.setColor(QPalette::Window, Qt::white);
    white.setColor(QPalette::WindowText, QColor(0x1c, 0x3a, 0x66));
    band->setPalette(white);
    band->setFrameShape(QFrame::StyledPanel);
    auto* bandLayout = new QVBoxLayout(band);
    bandLayout->setContentsMargins(12, 8, 12, 8);
    bandLayout->setSpacing(2);
    auto* title = Label(QStringLiteral("lblTitle"), Q(kUpdateCaption), band);
    QFont titleFont = title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.25);
    title->setFont(titleFont);
    auto* td = Label(QStringLiteral("lblTD"), QStringLiteral("Be up-to-date..."), band);
    td->setIndent(16);
    bandLayout->addWidget(title);
    bandLayout->addWidget(td);
    layout->addWidget(band);

    auto* body = new QVBoxLayout;
    body->setContentsMargins(12, 0, 12, 0);
    body->setSpacing(6);
    auto* welcome = Label(QStringLiteral("lblWelcome"),
                          QStringLiteral("Welcome to the Tarnwick-Soft Live-Update Wizard. This Wizard will help you "
                                         "to keep your Tarnwick-Soft products Up-to-date."),
                          this);
    auto* instructions = Label(QStringLiteral("lblInstructions"),
                               QStringLiteral("Once you click the Check Button, we will check if there is an updated "
                                              "Version of Quillon available."),
                               this);
    for (QLabel* l : {welcome, instructions}) {
        l->setWordWrap(true);
        body->addWidget(l);
    }

    auto* frame = new QGroupBox(QStringLiteral("Update Check"), this);
    frame->setObjectName(QStringLiteral("fraUpdateCheck"));
    auto* frameLayout = new QVBoxLayout(frame);
    frameLayout->setSpacing(4);
    prog_ = new QProgressBar(frame);
    prog_->setObjectName(QStringLiteral("Prog"));
    prog_->setTextVisible(false);
    prog_->setMinimum(0);
    label1_ = Label(QStringLiteral("Label1"), QString(), frame);
    updateMsg_ = Label(QStringLiteral("lblUpdateMsg"), QString(), frame);
    updateMsg_->setWordWrap(true);
    QFont bold = updateMsg_->font();
    bold.setBold(true);
    updateMsg_->setFont(bold);
    frameLayout->addWidget(prog_);
    frameLayout->addWidget(label1_);
    frameLayout->addWidget(updateMsg_);
    body->addWidget(frame);
    body->addStretch();

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    check_ = new XPButton(QStringLiteral("cmdCheck"), QStringLiteral("&Check"), this);
    download_ = new XPButton(QStringLiteral("cmdDownload"), QStringLiteral("&Download"), this);
    cancel_ = new XPButton(QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"), this);
    for (XPButton* b : {check_, download_, cancel_}) {
        b->setMinimumWidth(90);
        buttons->addWidget(b);
    }
    body->addLayout(buttons);
    layout->addLayout(body);

    connect(check_, &XPButton::clicked, this, [this] { form_.Check(); });
    connect(download_, &XPButton::clicked, this, [this] { form_.Download(); });
    connect(cancel_, &XPButton::clicked, this, &UpdateDialog::reject);
    form_.OnChanged([this] { Push(); });
    Push();

    setFixedSize(TwipsToPixels(kClientWidth, logicalDpiX()), TwipsToPixels(kClientHeight, logicalDpiY()));
    // The update window opens centred on the screen, not on its owner.
    if (QScreen* screen = parent ? parent->screen() : QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
}

void UpdateDialog::reject() {
    form_.Cancel();
    QDialog::reject();
}

void UpdateDialog::Push() {
    updateMsg_->setText(Q(form_.lblUpdateMsg));
    label1_->setText(Q(form_.label1));
    prog_->setMaximum(form_.progMax);
    prog_->setValue(form_.progValue);
    check_->setVisible(form_.cmdCheckVisible);
    check_->setEnabled(form_.cmdCheckEnabled);
    download_->setVisible(form_.cmdDownloadVisible);
    download_->setEnabled(form_.cmdDownloadEnabled);
    if (form_.busy)
        setCursor(Qt::WaitCursor);
    else
        unsetCursor();
}

}  // namespace quillon::ui
