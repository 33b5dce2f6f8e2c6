#pragma once
// Helpers shared by the suites that need no widgets: files read or written whole, lists of texts,
// the run-time error a call raises.
#include <kvr/error.h>

#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QtTest>

#include <csignal>
#include <initializer_list>

#include <sys/resource.h>

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

// While alive, no file of this process may grow past `bytes`: a disk that fills half way through a
// write. The write past it fails (SIGXFSZ ignored) instead of ending the process.
class DiscoLleno {
public:
    explicit DiscoLleno(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_antes);
        const rlimit limite{bytes, m_antes.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limite);
    }
    ~DiscoLleno() { setrlimit(RLIMIT_FSIZE, &m_antes); }

private:
    rlimit m_antes{};
};

// Runs a program to its end, fed `entrada`: what it printed, or "<NAME falló>" when it could not
// start, did not end within 30 s or ended with an error.
inline QByteArray ejecutar(const QString &programa, const QStringList &argumentos, const QByteArray &entrada = {})
{
    QProcess p;
    p.start(programa, argumentos);
    p.write(entrada);
    p.closeWriteChannel();
    const bool ok = p.waitForFinished(30000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    return ok ? p.readAllStandardOutput() : "<" + programa.toUtf8() + " falló>";
}

// The number of the run-time error that `f` raises, 0 when it raises none.
template <typename F> int errorDe(F f)
{
    try {
        f();
    } catch (const kvr::ErrorEjecucion &e) {
        return e.numero();
    }
    return 0;
}

// What a call returns, or "<error n>" for the run-time error it raises.
template <typename F> QString resultado(F f)
{
    try {
        return f();
    } catch (const kvr::ErrorEjecucion &e) {
        return QStringLiteral("<error %1>").arg(e.numero());
    }
}

} // namespace prueba
