// Random key sequences on the calculator engine: each byte picks one of the 24 keys or a click
// on the decimals button. An arithmetic error is an allowed outcome; after it the engine must
// go on working. Every display must read back as a number, and the tape only grows or is
// emptied by "C".
#include <kvr/error.h>
#include <kvr/motorcalculadora.h>

#include <QLocale>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tam)
{
    static const bool locale = (QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain)), true);
    (void)locale;
    kvr::MotorCalculadora m;
    for (size_t i = 0; i < tam; ++i) {
        const int eleccion = datos[i] % 25;
        const qsizetype antes = m.Papel().size();
        try {
            if (eleccion == 24)
                m.CambiarDecimales();
            else
                m.Tecla(eleccion);
        } catch (const kvr::ErrorEjecucion &) {
            continue;
        }
        const QString pantalla = m.Pantalla();
        if (pantalla.size() < 2 || pantalla.at(pantalla.size() - 2) != u' ')
            std::abort(); // the caption is always a number, a blank and a key
        if (eleccion != 21 && m.Papel().size() < antes)
            std::abort(); // only "C" empties the tape
        if (m.Decimales() < 2 || m.Decimales() > 5)
            std::abort();
    }
    return 0;
}
