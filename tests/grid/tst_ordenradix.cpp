// The grid's key sort on its own: hand-made key sets with their order written out, then large
// generated sets checked against a plain stable sort of the same keys.
#include "ordenradix.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <numeric>
#include <string>
#include <string_view>

using Claves = std::vector<std::string>;
using Posiciones = std::vector<uint32_t>;

namespace {

// Runs the sort on keys given in position order (the key i belongs to position i).
Posiciones ordenar(const Claves &claves)
{
    std::vector<char> bytes;
    std::vector<uint32_t> inicios;
    for (const std::string &c : claves) {
        inicios.push_back(uint32_t(bytes.size()));
        bytes.insert(bytes.end(), c.begin(), c.end());
    }
    inicios.push_back(uint32_t(bytes.size()));
    Posiciones posiciones(claves.size());
    std::iota(posiciones.begin(), posiciones.end(), 0U);
    return kvr::OrdenarClavesRadix(bytes, inicios, posiciones);
}

// The oracle: a stable sort by the keys' unsigned bytes.
Posiciones referencia(const Claves &claves)
{
    Posiciones p(claves.size());
    std::iota(p.begin(), p.end(), 0U);
    std::stable_sort(p.begin(), p.end(), [&](uint32_t a, uint32_t b) {
        return std::string_view(claves[a]) < std::string_view(claves[b]);
    });
    return p;
}

// `n` keys of weights from `menor` to `mayor`, each ended by 0x00 (so no key is the beginning of
// another), of 1 to `largo` weights after a prefix shared by all.
Claves generar(std::size_t n, int menor, int mayor, int largo, const std::string &prefijo, quint32 semilla)
{
    QRandomGenerator azar(semilla);
    Claves c(n);
    for (std::string &k : c) {
        k = prefijo;
        const int l = 1 + int(azar.bounded(largo));
        for (int i = 0; i < l; ++i)
            k.push_back(char(menor + int(azar.bounded(mayor - menor + 1))));
        k.push_back('\0');
    }
    return c;
}

std::string k(std::initializer_list<int> bytes)
{
    std::string s;
    for (int b : bytes)
        s.push_back(char(b));
    return s;
}

} // namespace

class TstOrdenRadix : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aMano_data()
    {
        QTest::addColumn<Claves>("claves");
        QTest::addColumn<Posiciones>("orden");
        QTest::newRow("ninguna") << Claves{} << Posiciones{};
        QTest::newRow("una") << Claves{k({5, 0})} << Posiciones{0};
        QTest::newRow("bytes altos después de los bajos")
            << Claves{k({0xF0, 0}), k({0x7F, 0}), k({0x80, 0}), k({0x02, 0})} << Posiciones{3, 1, 2, 0};
        QTest::newRow("la más corta primero")
            << Claves{k({9, 9, 0}), k({9, 0}), k({9, 9, 9, 0})} << Posiciones{1, 0, 2};
        QTest::newRow("iguales por posición")
            << Claves{k({7, 0}), k({3, 0}), k({7, 0}), k({3, 0}), k({7, 0})} << Posiciones{1, 3, 0, 2, 4};
    }
    void aMano()
    {
        QFETCH(Claves, claves);
        QTEST(ordenar(claves), "orden");
    }

    void generadas_data()
    {
        QTest::addColumn<Claves>("claves");
        // Enough keys for the two-byte passes and the parts finished by comparison.
        QTest::newRow("200 000 variadas") << generar(200000, 2, 255, 12, {}, 1);
        QTest::newRow("50 000 de un alfabeto corto") << generar(50000, 0x61, 0x63, 6, {}, 2);
        QTest::newRow("30 000 con 40 bytes comunes") << generar(30000, 2, 255, 4, std::string(40, 'x'), 3);
        QTest::newRow("20 000 casi todas iguales") << generar(20000, 0x41, 0x41, 1, std::string(3, 'q'), 4);
        QTest::newRow("300 con claves de 300 bytes") << generar(300, 2, 3, 300, {}, 5);
    }
    void generadas()
    {
        QFETCH(Claves, claves);
        QCOMPARE(ordenar(claves), referencia(claves));
    }
};

QTEST_GUILESS_MAIN(TstOrdenRadix)
#include "tst_ordenradix.moc"
