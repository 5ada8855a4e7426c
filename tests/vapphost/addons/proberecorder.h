#pragma once

#include <QObject>
#include <QVariantMap>

namespace AppFrameWork {
class IVAppContainer;
}

// Receives the host's notifications by slot name and writes each back as a usage event.
class ProbeRecorder : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    void setContainer(AppFrameWork::IVAppContainer *container) { m_container = container; }
    void record(const QString &name, const QVariantMap &params);

public slots:
    void onSkinChanged(QVariantMap params);
    void onSecondInstance(QVariantMap params);

private:
    AppFrameWork::IVAppContainer *m_container = nullptr;
};
