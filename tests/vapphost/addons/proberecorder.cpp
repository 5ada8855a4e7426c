#include "proberecorder.h"

#include "host/ivappcontainer.h"

void ProbeRecorder::record(const QString &name, const QVariantMap &params)
{
    if (!m_container)
        return;
    QHash<QString, QString> flat;
    for (auto it = params.cbegin(); it != params.cend(); ++it)
        flat.insert(it.key(), it.value().toString());
    m_container->postEvent(name, flat);
}

void ProbeRecorder::onSkinChanged(QVariantMap params)
{
    record(QStringLiteral("probe_skin_changed"), params);
}

void ProbeRecorder::onSecondInstance(QVariantMap params)
{
    record(QStringLiteral("probe_second_instance"), params);
}
