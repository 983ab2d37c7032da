// What a meta-object shows to QML and to tools, as text that a test compares.
#pragma once

#include <QtCore/QMetaMethod>
#include <QtCore/QMetaObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// The class and its own properties, methods and enumerations, one line a member, in their order.
QString metaObjectText(const QMetaObject &metaObject);

/// The class's own methods of \a type in their order, with their access, and names of parameters.
QStringList methodTexts(const QMetaObject &metaObject, QMetaMethod::MethodType type);
