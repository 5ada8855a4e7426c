#include "table/vmrangeoperatewidget.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QSpinBox>

#include "host/liolite.h"
#include "shell/cappcontroller.h"
#include "shell/stylesheethelpers.h"

namespace {

QSpinBox *makePageSpinBox(QWidget *parent, const QString &accessibleName)
{
    auto *spinBox = new QSpinBox(parent);
    spinBox->setFixedSize(VLiteStyle::dpiScaledSize(80, 30));
    spinBox->setRange(1, 99999);
    spinBox->setValue(1);
    // No wheel focus: the wheel belongs to the list.
    spinBox->setFocusPolicy(Qt::StrongFocus);
    spinBox->setAccessibleName(accessibleName);
    return spinBox;
}

} // namespace

VMRangeOperateWidget::VMRangeOperateWidget(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    m_fromSpinBox = makePageSpinBox(this, tr("first page"));
    layout->addWidget(m_fromSpinBox);
    layout->addSpacing(int(VLiteStyle::dpiScaled(4)));
    auto *separator = new VSeparatorLine(this, Qt::Horizontal);
    separator->setFixedSize(VLiteStyle::dpiScaledSize(10, 1));
    layout->addWidget(separator);
    layout->addSpacing(int(VLiteStyle::dpiScaled(4)));
    m_toSpinBox = makePageSpinBox(this, tr("last page"));
    layout->addWidget(m_toSpinBox);

    m_fromSpinBox->installEventFilter(this);
    m_toSpinBox->installEventFilter(this);
    onResetStyleSheet();
    if (CAppController *controller = CAppController::instance())
        connect(controller, &CAppController::sigSkinChanged, this, &VMRangeOperateWidget::onResetStyleSheet);
}

QSpinBox *VMRangeOperateWidget::fromSpinBox() const
{
    return m_fromSpinBox;
}

QSpinBox *VMRangeOperateWidget::toSpinBox() const
{
    return m_toSpinBox;
}

void VMRangeOperateWidget::onResetStyleSheet()
{
    // Once for both spin boxes: the sheet cascades, and each sheet set costs a style of its own.
    setStyleSheet(dpiScaledStyleSheet(spinBoxStyleSheet()));
}

bool VMRangeOperateWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Wheel && (watched == m_fromSpinBox || watched == m_toSpinBox)) {
        // Swallowed but unaccepted: the application hands it on to the parents.
        event->ignore();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
