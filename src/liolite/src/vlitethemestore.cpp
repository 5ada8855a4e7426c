#include "vlitethemestore.h"

#include "lioliteloggingcategory.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

QString rgbaText(const QColor& c)
{
    return QStringLiteral("rgba(%1,%2,%3,%4)").arg(c.red()).arg(c.green()).arg(c.blue()).arg(c.alpha());
}

} // namespace

VLiteThemeStore* VLiteThemeStore::instance()
{
    static VLiteThemeStore* store = [] {
        auto* s = new VLiteThemeStore;
        s->load(QStringLiteral("light"));
        return s;
    }();
    return store;
}

QStringList VLiteThemeStore::availableThemes()
{
    return {QStringLiteral("light"), QStringLiteral("dark")};
}

QString VLiteThemeStore::themeResource(const QString& name)
{
    return QStringLiteral(":/liolite/themes/%1.json").arg(name);
}

bool VLiteThemeStore::load(const QString& name)
{
    if (!availableThemes().contains(name)) {
        qCWarning(lcLiolite) << "unknown theme" << name;
        return false;
    }
    QFile file(themeResource(name));
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcLiolite) << "theme resource missing" << file.fileName();
        return false;
    }
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject()) {
        qCWarning(lcLiolite) << "theme" << name << "is not valid JSON:" << error.errorString();
        return false;
    }

    QHash<QString, QColor> palette;
    const QJsonObject paletteObject = doc.object().value(QStringLiteral("palette")).toObject();
    for (auto it = paletteObject.begin(); it != paletteObject.end(); ++it) {
        const QColor c(it.value().toString());
        if (!c.isValid()) {
            qCWarning(lcLiolite) << "theme" << name << "palette colour" << it.key() << "is invalid";
            continue;
        }
        palette.insert(it.key(), c);
    }

    QHash<QString, ThemeClass> classes;
    const QJsonObject classObject = doc.object().value(QStringLiteral("classes")).toObject();
    for (auto it = classObject.begin(); it != classObject.end(); ++it) {
        const QJsonObject entry = it.value().toObject();
        ThemeClass themeClass;
        const QJsonObject colors = entry.value(QStringLiteral("colors")).toObject();
        for (auto c = colors.begin(); c != colors.end(); ++c) {
            const QColor color = resolve(c.value().toString(), palette);
            if (!color.isValid()) {
                qCWarning(lcLiolite) << "theme" << name << "colour" << it.key() << c.key() << "is invalid";
                continue;
            }
            themeClass.colors.insert(c.key(), color);
        }
        themeClass.style = entry.value(QStringLiteral("style")).toString();
        classes.insert(it.key(), themeClass);
    }

    m_name = name;
    m_palette = palette;
    m_classes = classes;
    m_scaledSheets.clear();
    return true;
}

QColor VLiteThemeStore::resolve(const QString& value, const QHash<QString, QColor>& palette) const
{
    if (value.startsWith(QLatin1Char('@')))
        return palette.value(value.mid(1));
    return QColor(value);
}

bool VLiteThemeStore::hasClass(const QString& themeClass) const
{
    return m_classes.contains(themeClass);
}

QStringList VLiteThemeStore::classes() const
{
    QStringList names = m_classes.keys();
    names.sort();
    return names;
}

QStringList VLiteThemeStore::keys(const QString& themeClass) const
{
    QStringList names = m_classes.value(themeClass).colors.keys();
    names.sort();
    return names;
}

QColor VLiteThemeStore::color(const QString& themeClass, const QString& key) const
{
    const auto it = m_classes.constFind(themeClass);
    if (it == m_classes.constEnd())
        return QColor();
    return it->colors.value(key);
}

QString VLiteThemeStore::rawStyle(const QString& themeClass) const
{
    return m_classes.value(themeClass).style;
}

QString VLiteThemeStore::selectorFor(const QString& themeClass)
{
    return QStringLiteral("*[ObjectThemeClassName=\"%1\"]").arg(themeClass);
}

QString VLiteThemeStore::styleSheet(const QString& themeClass) const
{
    const auto it = m_classes.constFind(themeClass);
    if (it == m_classes.constEnd() || it->style.isEmpty())
        return QString();

    QString sheet = it->style;
    sheet.replace(QLatin1String("$self"), selectorFor(themeClass));

    static const QRegularExpression colourRef(QStringLiteral("@([A-Za-z][A-Za-z0-9_-]*)"));
    QString out;
    out.reserve(sheet.size());
    int last = 0;
    auto match = colourRef.globalMatch(sheet);
    while (match.hasNext()) {
        const auto m = match.next();
        out += sheet.midRef(last, m.capturedStart() - last);
        const QString key = m.captured(1);
        QColor c = it->colors.value(key);
        if (!c.isValid())
            c = m_palette.value(key);
        if (c.isValid()) {
            out += rgbaText(c);
        } else {
            qCWarning(lcLiolite) << "theme" << m_name << "class" << themeClass << "refers to unknown colour" << key;
            out += m.captured(0);
        }
        last = m.capturedEnd();
    }
    out += sheet.midRef(last);
    return out;
}

QString VLiteThemeStore::scaledStyleSheet(const QString& themeClass, double factor) const
{
    if (!qFuzzyCompare(factor, m_scaledFactor)) {
        m_scaledSheets.clear();
        m_scaledFactor = factor;
    }
    auto it = m_scaledSheets.constFind(themeClass);
    if (it == m_scaledSheets.constEnd())
        it = m_scaledSheets.insert(themeClass, scalePixelSizes(styleSheet(themeClass), factor));
    return *it;
}

QString VLiteThemeStore::iconPath(const QString& iconName) const
{
    if (iconName.isEmpty())
        return QString();
    if (m_name != QLatin1String("light")) {
        const QString themed = QStringLiteral(":/liolite/icons/%1/%2.svg").arg(m_name, iconName);
        if (QFile::exists(themed))
            return themed;
    }
    const QString plain = QStringLiteral(":/liolite/icons/%1.svg").arg(iconName);
    return QFile::exists(plain) ? plain : QString();
}

QString VLiteThemeStore::scalePixelSizes(const QString& sheet, double factor)
{
    if (sheet.isEmpty() || qFuzzyCompare(factor, 1.0))
        return sheet;
    static const QRegularExpression pixels(QStringLiteral("(\\d+)(px)"),
                                           QRegularExpression::CaseInsensitiveOption);
    QString out;
    out.reserve(sheet.size());
    int last = 0;
    auto match = pixels.globalMatch(sheet);
    while (match.hasNext()) {
        const auto m = match.next();
        out += sheet.midRef(last, m.capturedStart() - last);
        out += QString::number(qRound(m.captured(1).toDouble() * factor));
        out += m.captured(2);
        last = m.capturedEnd();
    }
    out += sheet.midRef(last);
    return out;
}

QPalette VLiteThemeStore::widgetPalette(const QPalette& base) const
{
    QPalette pal = base;
    const auto set = [&pal, this](QPalette::ColorRole role, const char* name) {
        const QColor c = m_palette.value(QString::fromLatin1(name));
        if (c.isValid())
            pal.setColor(QPalette::All, role, c);
    };
    set(QPalette::Window, "surface-alt");
    set(QPalette::WindowText, "text");
    set(QPalette::Base, "surface");
    set(QPalette::AlternateBase, "surface-alt");
    set(QPalette::Text, "text");
    set(QPalette::Button, "surface");
    set(QPalette::ButtonText, "text");
    set(QPalette::ToolTipBase, "surface");
    set(QPalette::ToolTipText, "text");
    set(QPalette::PlaceholderText, "text-muted");
    set(QPalette::Highlight, "accent");
    set(QPalette::HighlightedText, "text-on-accent");
    set(QPalette::Link, "accent");
    set(QPalette::Light, "surface");
    set(QPalette::Midlight, "border");
    set(QPalette::Mid, "border-strong");
    set(QPalette::Dark, "border-strong");
    const QColor muted = m_palette.value(QStringLiteral("text-muted"));
    if (muted.isValid()) {
        for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
            pal.setColor(QPalette::Disabled, role, muted);
    }
    return pal;
}
