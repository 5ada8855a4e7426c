#include <liolite/vlitecontentdlg.h>

#include <liolite/vdrawhelper.h>
#include <liolite/vlitebutton.h>
#include <liolite/vlitestyle.h>
#include <liolite/vlitethemenotifier.h>

#include "vlitethemeapplier.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace {

const int TitleHeight = 44;
const int SideMargin = 20;
const int IconSize = 20;

QString iconNameFor(int iconType)
{
    switch (iconType) {
    case VLiteContentDlg::IconQuestion: return QStringLiteral("vlite_dlg_question");
    case VLiteContentDlg::IconWarning: return QStringLiteral("vlite_dlg_warning");
    case VLiteContentDlg::IconFailure: return QStringLiteral("vlite_dlg_failure");
    case VLiteContentDlg::IconInfo: return QStringLiteral("vlite_dlg_info");
    case VLiteContentDlg::IconSuccess: return QStringLiteral("vlite_dlg_success");
    default: return QString();
    }
}

// Lets long paths wrap at their separators instead of widening the dialog.
QString wrappable(const QString& text)
{
    QString out;
    out.reserve(text.size() + text.size() / 8);
    for (const QChar c : text) {
        out += c;
        if (c == QLatin1Char('/') || c == QLatin1Char('\\'))
            out += QChar(0x200B);
    }
    return out;
}

int scaled(int length)
{
    return int(VLiteStyle::dpiScaled(length));
}

} // namespace

VLiteContentDlg::VLiteContentDlg(QWidget* parent, IconType iconType)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
    , m_iconType(iconType)
{
    setModal(true);
    setAttribute(Qt::WA_StyledBackground);
    setMinimumWidth(scaled(380));
    setMaximumWidth(scaled(560));

    auto* root = new QVBoxLayout(this);
    // Matches the 1px border of the look after its pixel sizes are scaled (rounded).
    const int border = qMax(1, qRound(VLiteStyle::dpi()));
    root->setContentsMargins(border, border, border, border);
    root->setSpacing(0);

    m_titleBar = new QWidget(this);
    m_titleBar->setObjectName(QStringLiteral("vlite_dlg_titlebar"));
    m_titleBar->setAttribute(Qt::WA_StyledBackground);
    m_titleBar->setFixedHeight(scaled(TitleHeight));
    auto* titleLayout = new QHBoxLayout(m_titleBar);
    titleLayout->setContentsMargins(scaled(SideMargin), 0, scaled(10), 0);
    titleLayout->setSpacing(scaled(8));
    m_iconLabel = new QLabel(m_titleBar);
    m_iconLabel->setObjectName(QStringLiteral("vlite_dlg_icon"));
    m_iconLabel->setFixedSize(scaled(IconSize), scaled(IconSize));
    m_titleLabel = new QLabel(m_titleBar);
    m_titleLabel->setObjectName(QStringLiteral("vlite_dlg_title"));
    m_closeButton = new VLiteButton(m_titleBar);
    m_closeButton->setObjectName(QStringLiteral("vlite_dlg_close"));
    m_closeButton->setFixedSize(scaled(28), scaled(28));
    m_closeButton->setIconSize(QSize(scaled(16), scaled(16)));
    m_closeButton->setIcon(VDrawHelper::loadIcon(
        QStringLiteral("vlite_dlg_close;vlite_dlg_close_hover;vlite_dlg_close_pressed;")));
    m_closeButton->setFocusPolicy(Qt::NoFocus);
    m_closeButton->setAutoDefault(false);
    m_closeButton->setToolTip(QCoreApplication::translate("VLiteContentDlg", "Close"));
    titleLayout->addWidget(m_iconLabel);
    titleLayout->addWidget(m_titleLabel, 1);
    titleLayout->addWidget(m_closeButton);
    root->addWidget(m_titleBar);

    m_body = new QWidget(this);
    m_body->setObjectName(QStringLiteral("vlite_dlg_body"));
    m_bodyLayout = new QVBoxLayout(m_body);
    m_bodyLayout->setContentsMargins(scaled(SideMargin), scaled(6), scaled(SideMargin), 0);
    m_bodyLayout->setSpacing(0);
    m_contentLabel = new QLabel(m_body);
    m_contentLabel->setObjectName(QStringLiteral("vlite_dlg_content"));
    m_contentLabel->setWordWrap(true);
    m_contentLabel->setTextFormat(Qt::PlainText);
    m_contentLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_contentLabel->setMinimumHeight(scaled(40));
    m_contentLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_bodyLayout->addWidget(m_contentLabel);
    root->addWidget(m_body, 1);

    auto* buttonRow = new QHBoxLayout;
    buttonRow->setContentsMargins(scaled(SideMargin), scaled(20), scaled(SideMargin), scaled(SideMargin));
    buttonRow->setSpacing(scaled(10));
    buttonRow->addStretch(1);
    const QString defaults[3] = {QCoreApplication::translate("VLiteContentDlg", "Confirm"),
                                 QCoreApplication::translate("VLiteContentDlg", "Cancel"), QString()};
    const int defaultResults[3] = {QDialog::Accepted, QDialog::Rejected, 3};
    for (int i = 0; i < 3; ++i) {
        auto* button = new VLiteButton(defaults[i], this);
        button->setObjectName(QStringLiteral("vlite_dlg_button%1").arg(i));
        button->setMinimumSize(scaled(80), scaled(32));
        button->setAutoDefault(i == BtnConfirm);
        button->setDefault(i == BtnConfirm);
        buttonRow->addWidget(button);
        m_buttons[i].button = button;
        m_buttons[i].result = defaultResults[i];
        connect(button, &QPushButton::clicked, this, [this, i] { onButtonClicked(i); });
    }
    m_buttons[BtnThird].button->setVisible(false);
    root->addLayout(buttonRow);

    connect(m_closeButton, &QPushButton::clicked, this, &VLiteContentDlg::reject);
    for (QWidget* w : {m_titleBar, static_cast<QWidget*>(m_titleLabel), static_cast<QWidget*>(m_iconLabel)})
        w->installEventFilter(this);
    connect(VLiteStyle::notifier(), &VLiteThemeNotifier::themeChanged, this, [this] { changeStyle(); });

    changeStyle();
}

VLiteContentDlg::~VLiteContentDlg() = default;

void VLiteContentDlg::setTitle(const QString& title)
{
    m_titleLabel->setText(title);
    setWindowTitle(title);
}

QString VLiteContentDlg::title() const
{
    return m_titleLabel->text();
}

void VLiteContentDlg::setTitleIcon(IconType iconType)
{
    m_iconType = iconType;
    updateIcon();
}

VLiteContentDlg::IconType VLiteContentDlg::titleIcon() const
{
    return m_iconType;
}

void VLiteContentDlg::updateIcon()
{
    const QString name = iconNameFor(m_iconType);
    const QIcon icon = name.isEmpty() ? QIcon() : VDrawHelper::loadIcon(name);
    if (icon.isNull()) {
        m_iconLabel->clear();
        m_iconLabel->setVisible(false);
        return;
    }
    const qreal ratio = devicePixelRatioF();
    QPixmap pm = icon.pixmap(QSize(scaled(IconSize), scaled(IconSize)) * ratio);
    pm.setDevicePixelRatio(ratio);
    m_iconLabel->setPixmap(pm);
    m_iconLabel->setVisible(true);
}

void VLiteContentDlg::setTitleHitTest(bool enable)
{
    m_titleHitTest = enable;
    if (!enable)
        m_dragging = false;
}

bool VLiteContentDlg::titleHitTest() const
{
    return m_titleHitTest;
}

void VLiteContentDlg::setContent(const QString& text)
{
    m_content = text;
    m_contentLabel->setText(wrappable(text));
}

QString VLiteContentDlg::content() const
{
    return m_content;
}

void VLiteContentDlg::setCustomContentWidget(QWidget* widget, int height)
{
    if (widget == m_customContent)
        return;
    if (m_customContent) {
        m_bodyLayout->removeWidget(m_customContent);
        delete m_customContent;
        m_customContent = nullptr;
    }
    if (!widget) {
        m_contentLabel->setVisible(true);
        return;
    }
    m_customContent = widget;
    widget->setParent(m_body);
    if (height >= 0)
        widget->setFixedHeight(scaled(height));
    m_contentLabel->setVisible(false);
    m_bodyLayout->addWidget(widget);
    widget->show();
}

QWidget* VLiteContentDlg::customContentWidget() const
{
    return m_customContent;
}

VLiteButton* VLiteContentDlg::button(BtnType btn) const
{
    if (btn < BtnConfirm || btn > BtnThird)
        return nullptr;
    return m_buttons[btn].button;
}

void VLiteContentDlg::setButtonText(BtnType btn, const QString& text)
{
    if (VLiteButton* b = button(btn))
        b->setText(text);
}

QString VLiteContentDlg::buttonText(BtnType btn) const
{
    const VLiteButton* b = button(btn);
    return b ? b->text() : QString();
}

void VLiteContentDlg::setButtonResult(BtnType btn, int result)
{
    if (button(btn))
        m_buttons[btn].result = result;
}

int VLiteContentDlg::buttonResult(BtnType btn) const
{
    return button(btn) ? m_buttons[btn].result : ResultClosed;
}

void VLiteContentDlg::setButtonVisible(BtnType btn, bool visible)
{
    if (VLiteButton* b = button(btn))
        b->setVisible(visible);
}

bool VLiteContentDlg::isButtonVisible(BtnType btn) const
{
    const VLiteButton* b = button(btn);
    return b && !b->isHidden();
}

VLiteContentDlg::BtnType VLiteContentDlg::clickedButton() const
{
    return m_clicked;
}

void VLiteContentDlg::onButtonClicked(BtnType btn)
{
    m_clicked = btn;
    done(m_buttons[btn].result);
}

void VLiteContentDlg::reject()
{
    m_clicked = BtnNone;
    done(ResultClosed);
}

void VLiteContentDlg::changeStyle()
{
    VLiteThemeApplier::apply(this, VDrawHelper::getObjectThemeClassName(this, QStringLiteral("VLiteContentDlg")),
                             false);
    m_buttons[BtnConfirm].button->applyThemeClass(QStringLiteral("VLiteButton_Primary"));
    m_buttons[BtnCancel].button->applyThemeClass(QStringLiteral("VLiteButton_Secondary"));
    m_buttons[BtnThird].button->applyThemeClass(QStringLiteral("VLiteButton_Secondary"));
    m_closeButton->applyThemeClass(QStringLiteral("VLiteButton_Close"));
    updateIcon();
    update();
}

void VLiteContentDlg::showEvent(QShowEvent* event)
{
    m_clicked = BtnNone;
    m_dragging = false;
    QDialog::showEvent(event);
}

void VLiteContentDlg::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        event->accept();
        reject();
        return;
    }
    QDialog::keyPressEvent(event);
}

bool VLiteContentDlg::eventFilter(QObject* watched, QEvent* event)
{
    if (!m_titleHitTest)
        return QDialog::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton) {
            m_dragging = true;
            m_dragOffset = mouse->globalPos() - frameGeometry().topLeft();
            return true;
        }
        break;
    }
    case QEvent::MouseMove: {
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (m_dragging && (mouse->buttons() & Qt::LeftButton)) {
            move(mouse->globalPos() - m_dragOffset);
            return true;
        }
        break;
    }
    case QEvent::MouseButtonRelease:
        if (m_dragging && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
            m_dragging = false;
            return true;
        }
        break;
    default:
        break;
    }
    return QDialog::eventFilter(watched, event);
}
