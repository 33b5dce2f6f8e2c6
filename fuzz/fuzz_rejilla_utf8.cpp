// Random bytes as UTF-8 rows added to a grid (lines are rows, TABs part cells), as a bulk load
// adds them: cut sequences, stray continuation bytes, overlong forms and surrogates included.
// Every cell must then hold well-formed UTF-8 (what the grid promises the code that reads its
// bytes directly), and the readers of those bytes, the sort's keys and the search's upper-case
// copy, must take every cell within its bounds.
#include <kvr/buscador.h>
#include <kvr/mivisor.h>
#include <kvr/rejilla.h>

#include <QByteArray>
#include <QStringDecoder>

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tam)
{
    const std::string_view entrada(reinterpret_cast<const char *>(datos), tam);
    kvr::Rejilla g;
    kvr::CargarVisor(g, QStringLiteral("#0;Uno#10;Dos#10"));
    const int antes = g.Rows(); // the titles and the blank row the set-up leaves
    std::string_view celdas[3];
    std::size_t inicio = 0;
    int filas = 0;
    while (inicio <= entrada.size() && filas < 1000) {
        std::size_t fin = entrada.find('\n', inicio);
        if (fin == std::string_view::npos)
            fin = entrada.size();
        const std::string_view linea = entrada.substr(inicio, fin - inicio);
        int n = 0;
        for (std::size_t c = 0; n < 3;) {
            const std::size_t tab = linea.find('\t', c);
            celdas[n++] = linea.substr(c, tab == std::string_view::npos ? std::string_view::npos : tab - c);
            if (tab == std::string_view::npos)
                break;
            c = tab + 1;
        }
        g.AgregarFilaUtf8(celdas, n);
        ++filas;
        inicio = fin + 1;
    }
    for (int f = 0; f < g.Rows(); ++f)
        for (int c = 0; c < g.Cols(); ++c) {
            const std::string_view b = g.CeldaUtf8(f, c);
            // Qt's decoder as the judge of well-formed UTF-8 (a leading mark is a character too).
            QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
            (void)QString(utf8.decode(QByteArrayView(b.data(), qsizetype(b.size())))); // decodes on conversion
            if (utf8.hasError())
                std::abort();
        }
    kvr::OrdenarVisor(g, 1, false, 1);
    if (g.Rows() != antes + filas)
        std::abort();
    kvr::IndiceBusqueda indice;
    indice.Construir(g, {1, 2});
    const std::vector<unsigned char> dentro = indice.Buscar(g.TextMatrix(g.Rows() - 1, 1));
    if (dentro.size() != std::size_t(g.Rows() - 1) || (!dentro.empty() && !dentro.back()))
        std::abort(); // the last row always holds its own name
    return 0;
}
