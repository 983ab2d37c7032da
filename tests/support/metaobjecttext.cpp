// A meta-object as text, one line a member.
#include "metaobjecttext.h"

#include <QtCore/QMetaClassInfo>
#include <QtCore/QMetaEnum>
#include <QtCore/QMetaProperty>

#include <array>

namespace {

QString word(bool isSet, const char *text)
{
    return isSet ? QLatin1Char(' ') + QLatin1String(text) : QString();
}

QString textOf(const QMetaProperty &property)
{
    QString text = QStringLiteral("property %1 %2")
                       .arg(QLatin1String(property.typeName()), QLatin1String(property.name()));
    text += word(property.isReadable(), "read") + word(property.isWritable(), "write")
        + word(property.isResettable(), "reset") + word(property.isConstant(), "constant")
        + word(property.isFinal(), "final") + word(property.isDesignable(), "designable")
        + word(property.isScriptable(), "scriptable") + word(property.isStored(), "stored")
        + word(property.isUser(), "user");
    if (property.hasNotifySignal())
        text += QStringLiteral(" notify ") + QString::fromLatin1(property.notifySignal().methodSignature());
    if (property.revision() != 0)
        text += QStringLiteral(" revision %1").arg(property.revision());
    return text;
}

QString textOf(const QMetaMethod &method)
{
    constexpr std::array accesses{"private", "protected", "public"};
    constexpr std::array types{"method", "signal", "slot", "constructor"};
    QStringList parameters;
    const QList<QByteArray> names = method.parameterNames();
    const QList<QByteArray> parameterTypes = method.parameterTypes();
    for (int i = 0; i < method.parameterCount(); ++i)
        parameters.append(QString::fromLatin1(parameterTypes.at(i) + ' ' + names.at(i)));
    QString text =
        QStringLiteral("%1 %2 %3 %4(%5)")
            .arg(QLatin1String(accesses.at(size_t(method.access()))),
                 QLatin1String(types.at(size_t(method.methodType()))), QLatin1String(method.typeName()),
                 QString::fromLatin1(method.name()), parameters.join(QStringLiteral(", ")));
    text += word(method.attributes() & QMetaMethod::Cloned, "clone")
        + word(method.attributes() & QMetaMethod::Compatibility, "compatibility")
        + word(method.attributes() & QMetaMethod::Scriptable, "scriptable");
    if (*method.tag() != 0)
        text += QStringLiteral(" tag ") + QLatin1String(method.tag());
    if (method.revision() != 0)
        text += QStringLiteral(" revision %1").arg(method.revision());
    return text;
}

QString textOf(const QMetaEnum &enumeration)
{
    QString text = QStringLiteral("enumeration ") + QLatin1String(enumeration.name())
        + word(enumeration.isFlag(), "flags") + word(enumeration.isScoped(), "scoped");
    for (int i = 0; i < enumeration.keyCount(); ++i)
        text +=
            QStringLiteral("\n    %1 = %2").arg(QLatin1String(enumeration.key(i))).arg(enumeration.value(i));
    return text;
}

} // namespace

QString metaObjectText(const QMetaObject &metaObject)
{
    QStringList lines;
    lines.append(
        QStringLiteral("class %1 : %2")
            .arg(QLatin1String(metaObject.className()), QLatin1String(metaObject.superClass()->className())));
    for (int i = metaObject.classInfoOffset(); i < metaObject.classInfoCount(); ++i)
        lines.append(QStringLiteral("class information %1 = %2")
                         .arg(QLatin1String(metaObject.classInfo(i).name()),
                              QLatin1String(metaObject.classInfo(i).value())));
    for (int i = metaObject.enumeratorOffset(); i < metaObject.enumeratorCount(); ++i)
        lines.append(textOf(metaObject.enumerator(i)));
    for (int i = metaObject.propertyOffset(); i < metaObject.propertyCount(); ++i)
        lines.append(textOf(metaObject.property(i)));
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i)
        lines.append(textOf(metaObject.method(i)));
    for (int i = 0; i < metaObject.constructorCount(); ++i)
        lines.append(textOf(metaObject.constructor(i)));
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QStringList methodTexts(const QMetaObject &metaObject, QMetaMethod::MethodType type)
{
    QStringList result;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        if (metaObject.method(i).methodType() == type)
            result.append(textOf(metaObject.method(i)));
    }
    return result;
}
