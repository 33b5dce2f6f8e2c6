// Random tags, values and keystrokes through the field routines: the tag reader and writer, the
// editing and display forms, date completion, identity letters, account codes and the keystroke
// rules. A run-time error is an allowed outcome; a crash, a hang or a sanitizer report is not.
#include <kvr/error.h>
#include <kvr/numeros.h>
#include <kvr/servicios.h>
#include <kvr/tags.h>
#include <kvr/teclas.h>
#include <kvr/valores.h>

#include <QLocale>

#include <cstddef>
#include <cstdint>

namespace {

class Silencio : public kvr::Servicios {
public:
    int Mensaje(const QString &, int, const QString &) override { return kvr::RespAceptar; }
    QString TituloAplicacion() override { return QStringLiteral("fuzz"); }
    QDate Hoy() override { return QDate(2026, 11, 21); }
};

template <typename F>
void probar(F &&f)
{
    try {
        f();
    } catch (const kvr::ErrorEjecucion &) {
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    static Silencio silencio;
    kvr::PonerServicios(&silencio);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t largo)
{
    if (largo < 2)
        return 0;
    const uint8_t opciones = datos[0];
    QLocale::setDefault(opciones & 1 ? QLocale(QLocale::Spanish, QLocale::Spain) : QLocale::c());
    kvr::FechaTrabajo = (opciones & 2) ? QDate() : QDate(2026, 11, 21);
    const QString todo = QString::fromUtf8(reinterpret_cast<const char *>(datos + 1), qsizetype(largo - 1));
    // tag \x01 value \x01 key-or-delimiters
    const QStringList partes = todo.split(QChar(1));
    const QString tag = partes.value(0);
    const QString valor = partes.value(1);
    const QString extra = partes.value(2);

    probar([&] { kvr::LeerTag(tag, extra.left(2), valor.left(3)); });
    probar([&] { kvr::PonerTag(tag, extra.left(2), valor, QString()); });
    probar([&] { kvr::FormatearCampo(valor, tag); });
    probar([&] { kvr::TextoEdicion(valor, tag); });
    probar([&] { kvr::CompletarFecha(valor); });
    probar([&] { QString s = valor; kvr::LetraNIF(s); });
    probar([&] { QString s = valor; kvr::CompletarCuenta(s); });
    probar([&] { kvr::Val(valor); kvr::ValorRegional(valor); });
    probar([&] {
        const int n = int(valor.size());
        const int inicio = n ? int(opciones >> 2) % (n + 1) : 0;
        for (QChar c : extra.left(8))
            kvr::DecidirTecla(tag, valor, inicio, opciones & 0x40 ? n - inicio : 0, c.unicode());
    });
    return 0;
}
