#pragma once
// Helpers shared by the suites that need no widgets: files read or written whole, lists of texts.
#include <QFile>
#include <QStringList>
#include <QtTest>

#include <initializer_list>

namespace prueba {

inline QByteArray leer(const QString &ruta)
{
    QFile f(ruta);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<no se pudo leer>");
}
inline void escribir(const QString &ruta, const QByteArray &datos)
{
    QFile f(ruta);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(datos);
}

// A list of UTF-8 texts.
inline QStringList L(std::initializer_list<const char *> textos)
{
    QStringList r;
    for (const char *t : textos)
        r << QString::fromUtf8(t);
    return r;
}

} // namespace prueba
