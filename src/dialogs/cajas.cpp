#include <kvr/cajas.h>

#include <kvr/error.h>
#include <kvr/fechas.h>
#include <kvr/numeros.h>
#include <kvr/tags.h>
#include <kvr/valores.h>

namespace kvr {

QString TextoMensaje(const QString &ElMensaje)
{
    QString texto = ElMensaje;
    texto.replace(u';', u'\n');
    return texto;
}

std::optional<JuegoBotones> JuegoDeBotones(int LosBotones, int BotonOmision)
{
    // Captions from the rightmost button, Boton(0), to the leftmost, Boton(2).
    std::array<int, 3> respuestas{};
    switch (LosBotones) {
    case 1: respuestas = {RespAceptar, 0, 0}; break;
    case 2: respuestas = {RespCancelar, RespAceptar, 0}; break;
    case 3: respuestas = {RespNo, RespSi, 0}; break;
    case 4: respuestas = {RespCancelar, RespNo, RespSi}; break;
    case 5: respuestas = {RespIgnorar, RespReintentar, RespAbortar}; break;
    case 6: respuestas = {RespCancelar, RespReintentar, 0}; break;
    default: return std::nullopt;
    }
    JuegoBotones j;
    for (size_t i = 0; i < respuestas.size(); ++i)
        j.titulos[i] = TituloRespuesta(respuestas[i]);
    // The leftmost visible button is the first of the set; "other" always means Boton(0).
    int primero = 0;
    for (int i = 2; i >= 0; --i) {
        if (!j.titulos[i].isEmpty()) {
            primero = i;
            break;
        }
    }
    if (BotonOmision == 1)
        j.foco = primero;
    else if (BotonOmision == 2 && primero == 2)
        j.foco = 1;
    else
        j.foco = 0;
    return j;
}

std::optional<int> CodigoDeBoton(const QString &titulo)
{
    if (const int codigo = RespuestaDeTitulo(titulo))
        return codigo;
    return std::nullopt;
}

TipoPregunta TipoDePregunta(const QString &TagDelCampo)
{
    if (TagDelCampo == u"TABLA")
        return TipoPregunta::Lista;
    if (TagDelCampo.endsWith(u"(/)"))
        return TipoPregunta::Rango;
    return TipoPregunta::Valor;
}

std::optional<std::pair<QString, QString>> PartirRango(const QString &texto)
{
    const qsizetype p = texto.indexOf(QChar(SeparadorRango));
    if (p < 0)
        return std::nullopt;
    return std::make_pair(texto.left(p), texto.mid(p + 1));
}

QString UnirRango(const QString &desde, const QString &hasta)
{
    return desde + QChar(SeparadorRango) + hasta;
}

bool RangoEnOrden(const QString &desde, const QString &hasta, const QString &tag)
{
    if (desde.trimmed().isEmpty() || hasta.trimmed().isEmpty())
        return true;
    const QString tipo = LeerTag(tag, QStringLiteral("T")).value_or(QString());
    if (tipo == u"F") {
        const std::optional<QDate> d = LeerFecha(desde), h = LeerFecha(hasta);
        if (!d || !h)
            throw ErrorEjecucion(ErrorEjecucion::TiposNoCoinciden);
        return *h >= *d;
    }
    if (tipo == u"D")
        return Val(hasta) >= Val(desde);
    if (tipo == u"N" || tipo == u"n")
        return Val(TextoEdicion(hasta, tag)) >= Val(TextoEdicion(desde, tag));
    // By character codes, as a binary comparison does.
    return QStringView(desde).compare(QStringView(hasta), Qt::CaseSensitive) <= 0;
}

void PosicionCaja(float &Top, float &Left, const QSizeF &caja, const QRectF &pantalla,
                  const std::optional<QRectF> &formulario)
{
    if (Top == -1.0f)
        Top = float(pantalla.top() + (pantalla.height() - caja.height()) / 2);
    if (Left == -1.0f)
        Left = float(pantalla.left() + (pantalla.width() - caja.width()) / 2);
    if (formulario) {
        Top = float(formulario->top() + (formulario->height() - caja.height()) / 2);
        Left = float(formulario->left() + (formulario->width() - caja.width()) / 2);
    }
}

} // namespace kvr
