#include <kvr/mivisor.h>

#include <kvr/comunes.h>
#include <kvr/escala.h>
#include <kvr/fechas.h>
#include <kvr/numeros.h>
#include <kvr/servicios.h>

#include <QLocale>

#include <cmath>
#include <optional>
#include <string_view>

namespace kvr {

namespace {

constexpr int TwipsPorCaracter = 120;

QChar separadorDe(const QString &linea)
{
    if (linea.contains(u';'))
        return u';';
    if (linea.contains(u'|'))
        return u'|';
    return u';';
}

ColumnaVisor leerDescriptor(QString d)
{
    ColumnaVisor c;
    if (d.startsWith(u'<')) {
        c.alineacionTitulo = AlinIzquierda;
        d.remove(0, 1);
    } else if (d.startsWith(u'>')) {
        c.alineacionTitulo = AlinDerecha;
        d.remove(0, 1);
    }
    if (d.endsWith(u'=')) {
        c.alineacion = AlinCentro;
        d.chop(1);
    } else if (d.endsWith(u'>')) {
        c.alineacion = AlinDerecha;
        d.chop(1);
    }
    const qsizetype almohadilla = d.indexOf(u'#');
    if (almohadilla >= 0) {
        c.titulo = d.left(almohadilla);
        c.ancho = int(std::lround(Val(d.mid(almohadilla + 1)) * TwipsPorCaracter));
    } else {
        c.titulo = d;
        c.ancho = d == u"?" ? 0 : int(d.size()) * TwipsPorCaracter;
    }
    return c;
}

// A cell's number for running totals: by the regional settings, else the leading number.
double numeroCelda(const QString &texto)
{
    if (texto.trimmed().isEmpty())
        return 0.0;
    bool ok = false;
    const double v = ValorRegional(texto, &ok);
    return ok ? v : Val(texto);
}

// Puts back Redraw, Visible and Col as they were, also when a step throws.
struct Restaurar {
    Rejilla &v;
    bool redraw;
    int col;
    ~Restaurar()
    {
        v.PonerVisible(true);
        v.PonerRedraw(redraw);
        if (col < v.Cols())
            v.PonerCol(col);
    }
};

// The fast path of the typed sorts: a cell already in the form the sort would write it in
// ("dd/mm/yyyy", "#,##0.00" in the current locale) is read straight from its bytes and left as
// it stands; anything else goes through the regional reading and is rewritten. The fast readers
// only accept what the slow path would turn into the very same text and value.
inline bool digito(char c) { return c >= '0' && c <= '9'; }

std::optional<double> fechaCanonica(std::string_view t)
{
    if (t.size() != 10 || t[2] != '/' || t[5] != '/')
        return std::nullopt;
    for (const int i : {0, 1, 3, 4, 6, 7, 8, 9})
        if (!digito(t[std::size_t(i)]))
            return std::nullopt;
    const int d = (t[0] - '0') * 10 + (t[1] - '0');
    const int m = (t[3] - '0') * 10 + (t[4] - '0');
    const int a = (t[6] - '0') * 1000 + (t[7] - '0') * 100 + (t[8] - '0') * 10 + (t[9] - '0');
    if (a < 1900 || a > 2999) // the years no reading of the text can take for others
        return std::nullopt;
    const QDate fecha(a, m, d);
    if (!fecha.isValid())
        return std::nullopt;
    return double(SerieFecha(fecha));
}

// [-]d{1,3}(<group>ddd)*<decimal>dd, no leading zero, no "-0<decimal>00", at most 15 digits (so
// that the value prints back to the same digits): the amount in cents, divided once, which is
// the double nearest to the decimal text, as a regional reading gives.
std::optional<double> importeCanonico(std::string_view t, char grupo, char decimal)
{
    std::size_t i = 0;
    const bool negativo = !t.empty() && t[0] == '-';
    i += negativo;
    const std::size_t coma = t.size() >= 3 ? t.size() - 3 : 0;
    if (t.size() < i + 4 || t[coma] != decimal || !digito(t[coma + 1]) || !digito(t[coma + 2]))
        return std::nullopt;
    const std::size_t enteros = coma - i;
    if (enteros == 0 || enteros % 4 == 0 || (t[i] == '0' && enteros != 1))
        return std::nullopt;
    uint64_t centimos = 0;
    int cifras = 0;
    for (std::size_t k = i; k < coma; ++k) {
        const bool esGrupo = (coma - k) % 4 == 0;
        if (esGrupo) {
            if (t[k] != grupo)
                return std::nullopt;
            continue;
        }
        if (!digito(t[k]))
            return std::nullopt;
        centimos = centimos * 10 + uint64_t(t[k] - '0');
        ++cifras;
    }
    centimos = centimos * 100 + uint64_t(t[coma + 1] - '0') * 10 + uint64_t(t[coma + 2] - '0');
    if (cifras + 2 > 15 || (negativo && centimos == 0))
        return std::nullopt;
    const double valor = double(centimos) / 100.0;
    return negativo ? -valor : valor;
}

// The locale's separator as one ASCII byte, or 0 when it is not one (then no fast path).
char separadorAscii(const QString &s)
{
    return s.size() == 1 && s[0].unicode() < 0x80 ? char(s[0].unicode()) : '\0';
}

void ordenarFechas(Rejilla &v, int col)
{
    const QString formato = QStringLiteral("dd/mm/yyyy");
    std::vector<std::optional<double>> valores;
    valores.reserve(std::size_t(std::max(0, v.Rows() - v.FixedRows())));
    for (int f = v.FixedRows(); f < v.Rows(); ++f) {
        if (f == 0) { // a title row that is not fixed keeps its text
            valores.push_back(std::nullopt);
            continue;
        }
        const std::string_view bytes = v.CeldaUtf8(f, col);
        if (bytes.empty()) {
            valores.push_back(std::nullopt);
            continue;
        }
        if (const std::optional<double> serie = fechaCanonica(bytes)) {
            valores.push_back(serie);
            continue;
        }
        const QString texto = QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
        const std::optional<QDate> fecha = LeerFecha(texto);
        if (fecha) {
            valores.push_back(double(SerieFecha(*fecha)));
            const QString canonico = FormatoFecha(*fecha, formato);
            if (canonico != texto)
                v.PonerTextMatrix(f, col, canonico);
        } else {
            valores.push_back(std::nullopt);
            v.PonerTextMatrix(f, col, QString());
        }
    }
    v.OrdenarPorValores(valores, false);
}

void ordenarImportes(Rejilla &v, int col)
{
    const QString formato = QStringLiteral("#,##0.00");
    const QLocale locale;
    const char grupo = separadorAscii(locale.groupSeparator());
    const char decimal = separadorAscii(locale.decimalPoint());
    const bool rapido = grupo && decimal && grupo != decimal && !digito(grupo) && !digito(decimal)
                        && locale.negativeSign() == u"-";
    std::vector<std::optional<double>> valores;
    valores.reserve(std::size_t(std::max(0, v.Rows() - v.FixedRows())));
    for (int f = v.FixedRows(); f < v.Rows(); ++f) {
        const std::string_view bytes = f == 0 ? std::string_view() : v.CeldaUtf8(f, col);
        if (rapido) {
            if (const std::optional<double> valor = importeCanonico(bytes, grupo, decimal)) {
                valores.push_back(valor);
                continue;
            }
        }
        const QString texto = QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
        bool ok = false;
        const double valor = texto.isEmpty() ? 0.0 : ValorRegional(texto, &ok);
        if (!ok) {
            // Empty cells stay empty and sort first; a text that is no number keeps its text
            // and sorts after the numbers.
            valores.push_back(std::nullopt);
            continue;
        }
        valores.push_back(valor);
        const QString canonico = Formato(valor, formato);
        if (canonico != texto)
            v.PonerTextMatrix(f, col, canonico);
    }
    v.OrdenarPorValores(valores, false, col);
}

} // namespace

QList<ColumnaVisor> LeerDescriptores(const QString &linea)
{
    const QChar sep = separadorDe(linea);
    QString resto = linea;
    if (resto.endsWith(sep))
        resto.chop(1);
    QList<ColumnaVisor> columnas;
    for (const QString &d : resto.split(sep))
        columnas.append(leerDescriptor(d));
    return columnas;
}

void CargarVisor(Rejilla &visor, const QString &descriptores)
{
    const QList<ColumnaVisor> columnas = LeerDescriptores(descriptores);
    const int n = int(columnas.size());
    const bool redraw = visor.Redraw();
    visor.PonerRedraw(false);
    visor.Clear();
    if (visor.FixedCols() > n)
        visor.PonerFixedCols(n);
    visor.PonerCols(n);
    // The fixed rows and one data row, with no old rows below; the data row shown.
    visor.PonerRows(visor.FixedRows() + 1);
    visor.PonerRowHeight(visor.Rows() - 1, -1);
    for (int c = 0; c < n; ++c) {
        if (c == n - 1)
            visor.PonerRedraw(redraw); // the grid repaints once, while the last column is set
        const ColumnaVisor &d = columnas[c];
        visor.PonerColWidth(c, int(std::lround(EscalaX(float(d.ancho)))));
        visor.PonerFixedAlignment(c, d.alineacionTitulo);
        visor.PonerColAlignment(c, d.alineacion);
        PonerCelda(visor, 0, c, d.titulo);
    }
}

QString LeerCelda(const Rejilla &visor, int fila, int col)
{
    return visor.TextMatrix(fila, col);
}

void PonerCelda(Rejilla &visor, int fila, int col, const QString &texto, bool sumar, bool conFormato)
{
    if (fila >= visor.Rows())
        visor.PonerRows(fila + 1);
    if (!sumar) {
        visor.PonerTextMatrix(fila, col, texto);
        return;
    }
    const double suma = numeroCelda(visor.TextMatrix(fila, col)) + numeroCelda(texto);
    visor.PonerTextMatrix(fila, col, FormatoImporte(TextoNumero(suma), QString(), conFormato));
}

void LimpiarVisor(Rejilla &visor)
{
    const bool redraw = visor.Redraw();
    visor.PonerRedraw(false);
    for (int f = visor.FixedRows(); f < visor.Rows(); ++f)
        for (int c = visor.FixedCols(); c < visor.Cols(); ++c)
            visor.PonerTextMatrix(f, c, QString());
    visor.PonerRedraw(redraw);
}

void QuitarFilaVisor(Rejilla &visor, int fila)
{
    if (visor.Rows() == 2) {
        for (int c = 0; c < visor.Cols(); ++c)
            visor.PonerTextMatrix(1, c, QString());
        return;
    }
    visor.RemoveItem(fila);
}

int BuscarColumnaVisor(const Rejilla &visor, const QString &titulo, bool silencioso)
{
    if (titulo.startsWith(u'#'))
        return int(std::lround(Val(titulo.mid(1))));
    if (visor.Rows() > 0) {
        for (int c = 0; c < visor.Cols(); ++c)
            if (visor.TextMatrix(0, c) == titulo)
                return c;
    }
    if (silencioso)
        return -1;
    ServiciosActuales().Mensaje(
        QStringLiteral("No encontrado ninguna columna con el título [") + titulo + u']',
        Critico + SoloAceptar, QStringLiteral("Búsqueda en [") + visor.Nombre() + u']');
    return 0;
}

void OrdenarVisor(Rejilla &visor, int columna, bool marcarTitulo, int columnaMarcada)
{
    Restaurar restaurar{visor, visor.Redraw(), visor.Col()};
    visor.PonerRedraw(false);
    if (columna != -1)
        visor.PonerCol(columna);
    const int col = visor.Col();
    const QString tag = visor.Tag();
    const QChar letra = col < tag.size() ? tag.at(col) : QChar(u' ');
    visor.PonerVisible(false);
    if (letra == u'F')
        ordenarFechas(visor, col);
    else if (letra == u'I')
        ordenarImportes(visor, col);
    else
        visor.Sort(OrdenTextoSinMayAsc);

    const int marcada = columnaMarcada != -1 ? columnaMarcada : visor.Col();
    if (marcarTitulo && visor.Rows() > 0) {
        const int fila = visor.Row(), actual = visor.Col();
        visor.PonerRow(0);
        for (int c = 0; c < visor.Cols(); ++c) {
            visor.PonerCol(c);
            visor.PonerCellFontBold(c == marcada);
        }
        visor.PonerRow(fila);
        visor.PonerCol(actual);
    }
}

} // namespace kvr
