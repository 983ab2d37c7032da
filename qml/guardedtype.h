// GuardedType<T>: a back-end class as a QML engine may call it. The engine does not survive a C++
// exception, and hands arrays and objects to variant parameters in a form that only the engine
// understands. Both end here.
#pragma once

#include <QtCore/QMetaMethod>
#include <QtCore/QVariant>
#include <QtQml/QJSEngine>
#include <QtQml/QJSValue>

#include <exception>
#include <utility>

/**
 * T with two differences, both on the way by which a QML engine calls it and on no other:
 *
 * - an exception derived from std::exception becomes a JavaScript `Error` with the exception's text; the
 *   script can catch it, and otherwise it ends the handler or the binding that made the call;
 * - JavaScript arrays and objects reach variant parameters as plain lists and maps, and QML objects reach
 * those of a function without a result as nothing: it takes the value to keep it, and would keep the pointer
 * to an object that the engine deletes. A function with a result may hand its argument back, which stays what
 * it is.
 *
 * C++ callers, who call T's functions directly, still get the exception. The meta-object is T's own, so QML
 * and tools see T under its own name.
 */
template <class T> class GuardedType : public T
{
public:
    /// \param engine the engine that will call this object; must live longer than it
    /// \param arguments what the constructor of T takes
    template <typename... Arguments>
    explicit GuardedType(QJSEngine *engine, Arguments &&...arguments)
        : T(std::forward<Arguments>(arguments)...)
        , m_engine(engine)
    {
    }

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override
    {
        if (call == QMetaObject::InvokeMetaMethod)
            makeVariantsPlain(T::staticMetaObject.method(id), arguments);
        try {
            return T::qt_metacall(call, id, arguments);
        } catch (const std::exception &error) {
            m_engine->throwError(QString::fromLocal8Bit(error.what()));
            return callWasHandled;
        }
    }

private:
    static constexpr int callWasHandled = -1;

    enum class Objects { Passed, Dropped };

    static void makeVariantsPlain(const QMetaMethod &method, void **arguments)
    {
        const Objects objects = method.returnType() == QMetaType::Void ? Objects::Dropped : Objects::Passed;
        for (int i = 0; i < method.parameterCount(); ++i) {
            if (method.parameterType(i) != QMetaType::QVariant)
                continue;
            // The first entry is the place for the result.
            auto *const argument = static_cast<QVariant *>(arguments[i + 1]);
            *argument = plain(*argument, objects);
        }
    }

    /// Lists and maps for arrays and objects.
    static QVariant plain(const QVariant &value, Objects objects)
    {
        const int type = value.userType();
        if (type == qMetaTypeId<QJSValue>())
            return plain(value.value<QJSValue>().toVariant(), objects);
        if (objects == Objects::Dropped && QMetaType::typeFlags(type).testFlag(QMetaType::PointerToQObject))
            return {};
        if (type == QMetaType::QVariantList) {
            QVariantList list = value.toList();
            for (QVariant &entry : list)
                entry = plain(entry, objects);
            return list;
        }
        if (type == QMetaType::QVariantMap) {
            QVariantMap map = value.toMap();
            for (QVariant &entry : map)
                entry = plain(entry, objects);
            return map;
        }
        return value;
    }

    QJSEngine *const m_engine;
};
