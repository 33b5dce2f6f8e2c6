#include <kvr/motorcalculadora.h>
#include <kvr/error.h>
#include <kvr/numeros.h>

#include <cmath>

namespace kvr {

namespace {

QChar ultimo(const QString &s)
{
    return s.isEmpty() ? QChar() : s.back();
}

// The text a computed value is kept as: plain digits, "." as decimal point, then a blank and
// the key that closed it.
QString numeroResultado(double valor)
{
    if (!std::isfinite(valor))
        throw ErrorEjecucion(ErrorEjecucion::Desbordamiento);
    QString t = TextoNumero(valor);
    t.replace(u',', u'.');
    return t;
}

// A division whose divisor is zero stops with the arithmetic error the desktop runtime gives:
// 0/0 is an overflow, anything else over 0 a division by zero.
double dividir(double dividendo, double divisor)
{
    if (divisor == 0.0)
        throw ErrorEjecucion(dividendo == 0.0 ? ErrorEjecucion::Desbordamiento
                                              : ErrorEjecucion::DivisionPorCero);
    return dividendo / divisor;
}

} // namespace

QString SinOperador(const QString &linea)
{
    if (linea.size() >= 2 && linea.at(linea.size() - 2) == u' ')
        return linea.left(linea.size() - 2);
    return linea;
}

double LeerNumero(const QString &texto)
{
    return Val(texto);
}

int IndiceDeTecla(int keyAscii)
{
    QChar c;
    switch (keyAscii) {
    case 13: c = u'='; break;
    case 8: c = u'<'; break;
    case 'n': case 'i': case 'c': case 's': case 'e': case 'p':
        c = QChar(char16_t(keyAscii - 'a' + 'A'));
        break;
    default:
        if (keyAscii <= 0 || keyAscii > 0xFFFF)
            return -1;
        c = QChar(char16_t(keyAscii));
    }
    return int(MotorCalculadora::Teclas().indexOf(c));
}

QString TextoParaPegar(const QString &portapapeles)
{
    if (!portapapeles.contains(u','))
        return portapapeles;
    QString t = portapapeles;
    t.remove(u'.');
    t.replace(u',', u'.');
    return t;
}

bool FactorDeLineaComandos(const QString &linea, double &factor)
{
    if (!linea.startsWith(u'+'))
        return false;
    try {
        factor = Val(linea.mid(1));
    } catch (const ErrorEjecucion &) {
        factor = 0.0;
    }
    // No factor, or one that would not give a window (zero or negative), is the design size.
    if (!(factor > 0.0))
        factor = 1.0;
    return true;
}

const QString &MotorCalculadora::Teclas()
{
    static const QString teclas = QStringLiteral("789456123.0*</%-S+=NICEP");
    return teclas;
}

QString MotorCalculadora::TeclaDe(int indice)
{
    return indice >= 0 && indice < Teclas().size() ? QString(Teclas().at(indice)) : QString();
}

QString MotorCalculadora::AyudaDe(int indice)
{
    switch (indice) {
    case 12: return QStringLiteral("Eliminar último dígito");
    case 16: return QStringLiteral("Cambiar signo");
    case 19: return QStringLiteral("Neto de Base+Impuesto");
    case 20: return QStringLiteral("Impuesto de Base+Impuesto");
    case 21: return QStringLiteral("Eliminar valores");
    case 22: return QStringLiteral("Pesetas a Euros");
    case 23: return QStringLiteral("Euros a Pesetas");
    default: return QString();
    }
}

MotorCalculadora::MotorCalculadora()
    : m_pantalla(QStringLiteral("0.00  "))
    , m_lineaPantalla(QStringLiteral("0.00  "))
{
}

QString MotorCalculadora::TextoDecimales() const
{
    return QString::number(m_decimales) + u'd';
}

QStringList MotorCalculadora::LineasPapel() const
{
    QStringList lineas = m_papel.split(QStringLiteral("\r\n"));
    lineas.removeLast(); // the tape always ends with a line end
    return lineas;
}

QString MotorCalculadora::formatear(double valor) const
{
    return Formato(valor, QStringLiteral("#,##0.") + QString(m_decimales, u'0'));
}

void MotorCalculadora::Visualizar(const QString &linea)
{
    if (!linea.isEmpty())
        m_lineaPantalla = linea;
    const QString &r = m_lineaPantalla;
    m_pantalla = formatear(LeerNumero(SinOperador(r))) + u' ' + r.right(1);
}

void MotorCalculadora::AnotarPapel(const QString &linea)
{
    const QString renglon = linea.isEmpty()
        ? m_pantalla
        : formatear(LeerNumero(SinOperador(linea))) + u' ' + linea.right(1);
    m_papel += renglon + QStringLiteral("\r\n");
    if (AlAnotar)
        AlAnotar(renglon);
}

void MotorCalculadora::CambiarDecimales()
{
    int n = m_decimales + 1;
    if (n >= 6)
        n = 2;
    m_decimales = n;
    Visualizar(QString());
}

bool MotorCalculadora::TeclaTexto(QChar caption)
{
    const int i = int(Teclas().indexOf(caption));
    if (i < 0)
        return false;
    Tecla(i);
    return true;
}

void MotorCalculadora::Tecla(int indice)
{
    if (indice < 0 || indice >= Teclas().size())
        throw ErrorEjecucion(ErrorEjecucion::SubindiceFueraDeIntervalo);
    const QChar k = Teclas().at(indice);
    const QString dosBlancos = QStringLiteral("  ");

    if (k == u'.' && Entrada.contains(u'.'))
        return;
    if (k == u'<') {
        if (Entrada.isEmpty())
            return;
        Entrada.chop(1);
        Visualizar(Entrada + dosBlancos);
        return;
    }
    if (k == u'C') {
        // UltimoValor survives: an operator right after "C" reuses it.
        Entrada.clear();
        Pendiente.clear();
        Operando.clear();
        Resultado.clear();
        Visualizar(QStringLiteral("0.00  "));
        m_papel.clear();
        if (AlBorrarPapel)
            AlBorrarPapel();
        return;
    }
    if (k == u'S') {
        if (!Entrada.startsWith(u'-'))
            Entrada.prepend(u'-');
        else
            Entrada.remove(0, 1);
        Visualizar(Entrada + dosBlancos);
        return;
    }
    if (k.isDigit() || k == u'.') {
        if (k == u'0' && Entrada == u"0")
            return;
        Entrada += k;
        Visualizar(Entrada + dosBlancos);
        return;
    }
    operador(k);
}

void MotorCalculadora::operador(QChar k)
{
    if (k == u'%' && Pendiente.isEmpty())
        return;

    bool sinPublicar = false;
    if (Entrada.isEmpty()) {
        if (k == u'%')
            return;
        if (k == u'=' && Resultado.endsWith(u'='))
            return; // a repeated "=" is ignored
        if (k == u'=') {
            // Nothing typed: the operand reads 0, and nothing is shown or written for it.
            Entrada = QStringLiteral(" =");
            sinPublicar = true;
        } else {
            // Straight after a result the chain goes on from it; the same operator again
            // repeats the last operand.
            if (!Resultado.isEmpty() && !Resultado.endsWith(k)) {
                UltimoValor = Resultado.left(Resultado.size() - 2);
                Resultado = UltimoValor + u' ' + k;
                Pendiente.clear();
            }
            Entrada = UltimoValor;
            if (Entrada.isEmpty())
                return;
        }
    }

    if (!sinPublicar) {
        UltimoValor = Entrada;
        Entrada = Entrada + u' ' + k;
        Visualizar(Entrada);
        AnotarPapel(Entrada);
    }

    if (k == u'E' || k == u'P') {
        // Conversions leave Operando alone; any pending operation is dropped.
        const double v = LeerNumero(Entrada);
        Resultado = numeroResultado(k == u'E' ? v / CambioPeseta : v * CambioPeseta) + u' ' + k;
        mostrarResultado();
        return;
    }

    if (Pendiente.isEmpty()) {
        Pendiente = Entrada;
        Entrada.clear();
        return;
    }

    Operando = Entrada;
    Entrada.clear();
    const double p = LeerNumero(SinOperador(Pendiente));
    double a = LeerNumero(SinOperador(Operando));
    const QChar op = ultimo(Pendiente);

    if (k == u'%') {
        if (op == u'+' || op == u'-') {
            // The percentage of the first operand becomes the operand added or taken away.
            Operando = numeroResultado(a * p / Base) + QStringLiteral(" =");
            a = LeerNumero(SinOperador(Operando));
        } else if (op == u'*') {
            Resultado = numeroResultado(a * p / Base) + QStringLiteral(" =");
            mostrarResultado();
            return;
        }
    }

    QString numero;
    switch (op.unicode()) {
    case u'+': numero = numeroResultado(p + a); break;
    case u'-': numero = numeroResultado(p - a); break;
    case u'*': numero = numeroResultado(p * a); break;
    case u'/': numero = a == 0.0 ? QStringLiteral("0.00") : numeroResultado(p / a); break;
    case u'I': numero = numeroResultado(dividir(p * a, a + Base)); break;
    case u'N': numero = numeroResultado(dividir(p * Base, a + Base)); break;
    default: numero = SinOperador(Resultado); break; // no known operation: the old result stays
    }
    Resultado = numero + u' ' + ultimo(Operando);
    mostrarResultado();
}

void MotorCalculadora::mostrarResultado()
{
    Pendiente.clear();
    Visualizar(Resultado);
    if (AlCopiar)
        AlCopiar(m_pantalla.left(m_pantalla.size() - 2)); // the number without its key
    const QChar cierre = ultimo(Operando);
    if (cierre == u'+' || cierre == u'-' || cierre == u'/' || cierre == u'*') {
        // Closed by a further operator: the chain goes on from the result, not written down.
        Pendiente = Resultado;
        Entrada.clear();
    } else {
        UltimoValor = Resultado.left(Resultado.size() - 2);
        Pendiente.clear();
        AnotarPapel(QString());
        Entrada.clear();
    }
}

} // namespace kvr
