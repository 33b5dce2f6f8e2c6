#include <kvr/analisisteclas.h>

#include <kvr/error.h>

#include <QHash>

namespace kvr {

namespace {

constexpr int kMaximoRepeticiones = 9999;
constexpr int kMaximaProfundidad = 100; // groups within groups

[[noreturn]] void sintaxis(const QString &teclas)
{
    throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido,
                         QStringLiteral("%1: %2").arg(ErrorEjecucion::DescripcionDe(5), teclas));
}

// The keys the braces name, with the text a keyboard gives them (none for the moving keys).
const QHash<QString, PulsacionTecla> &nombres()
{
    static const QHash<QString, PulsacionTecla> tabla = [] {
        QHash<QString, PulsacionTecla> t;
        const auto con = [&t](std::initializer_list<const char *> ns, int tecla, const QString &texto = {},
                              Qt::KeyboardModifiers m = Qt::NoModifier) {
            for (const char *n : ns)
                t.insert(QString::fromLatin1(n), {tecla, m, texto});
        };
        con({"ENTER"}, Qt::Key_Return, QStringLiteral("\r"));
        con({"TAB"}, Qt::Key_Tab, QStringLiteral("\t"));
        con({"ESC", "ESCAPE"}, Qt::Key_Escape, QString(QChar(27)));
        con({"BS", "BKSP", "BACKSPACE"}, Qt::Key_Backspace, QStringLiteral("\b"));
        con({"DEL", "DELETE"}, Qt::Key_Delete, QString(QChar(127)));
        con({"INS", "INSERT"}, Qt::Key_Insert);
        con({"HOME"}, Qt::Key_Home);
        con({"END"}, Qt::Key_End);
        con({"PGUP"}, Qt::Key_PageUp);
        con({"PGDN"}, Qt::Key_PageDown);
        con({"UP"}, Qt::Key_Up);
        con({"DOWN"}, Qt::Key_Down);
        con({"LEFT"}, Qt::Key_Left);
        con({"RIGHT"}, Qt::Key_Right);
        con({"BREAK"}, Qt::Key_Pause);
        con({"CAPSLOCK"}, Qt::Key_CapsLock);
        con({"NUMLOCK"}, Qt::Key_NumLock);
        con({"SCROLLLOCK"}, Qt::Key_ScrollLock);
        con({"PRTSC"}, Qt::Key_Print);
        con({"HELP"}, Qt::Key_Help);
        con({"CLEAR"}, Qt::Key_Clear);
        con({"ADD"}, Qt::Key_Plus, QStringLiteral("+"), Qt::KeypadModifier);
        con({"SUBTRACT"}, Qt::Key_Minus, QStringLiteral("-"), Qt::KeypadModifier);
        con({"MULTIPLY"}, Qt::Key_Asterisk, QStringLiteral("*"), Qt::KeypadModifier);
        con({"DIVIDE"}, Qt::Key_Slash, QStringLiteral("/"), Qt::KeypadModifier);
        for (int f = 1; f <= 16; ++f)
            t.insert(QStringLiteral("F%1").arg(f), {Qt::Key_F1 + f - 1, Qt::NoModifier, {}});
        return t;
    }();
    return tabla;
}

// A typed character: its key is the code of its upper case, as Qt's keyboard gives it for Latin-1;
// capital letters come with Shift.
PulsacionTecla caracter(QChar c)
{
    switch (c.unicode()) {
    case u'\r':
    case u'\n': return nombres().value(QStringLiteral("ENTER"));
    case u'\t': return nombres().value(QStringLiteral("TAB"));
    case u'\b': return nombres().value(QStringLiteral("BS"));
    case 27: return nombres().value(QStringLiteral("ESC"));
    default: break;
    }
    PulsacionTecla p;
    p.texto = QString(c);
    if (c.unicode() <= 0xFF) {
        const QChar mayuscula = c.toUpper();
        p.tecla = mayuscula.unicode() <= 0xFF ? mayuscula.unicode() : c.unicode();
        if (c.isUpper() && c.isLetter())
            p.modificadores = Qt::ShiftModifier;
    } else {
        p.tecla = Qt::Key_unknown;
    }
    return p;
}

// A key with the modifiers held for it: Shift with Tab is Qt's Backtab, Ctrl with a letter types
// its control character, and a Shift for a letter types the capital.
PulsacionTecla conModificadores(PulsacionTecla p, Qt::KeyboardModifiers m)
{
    if (!m)
        return p;
    p.modificadores |= m;
    if (p.tecla == Qt::Key_Tab && (m & Qt::ShiftModifier))
        p.tecla = Qt::Key_Backtab;
    const bool letra = p.tecla >= Qt::Key_A && p.tecla <= Qt::Key_Z;
    if (letra && (m & Qt::ControlModifier))
        p.texto = QString(QChar(p.tecla - Qt::Key_A + 1));
    else if (m & Qt::ShiftModifier)
        p.texto = p.texto.toUpper();
    return p;
}

class Analizador {
public:
    explicit Analizador(const QString &t) : m_t(t) {}

    QList<PulsacionTecla> todo()
    {
        QList<PulsacionTecla> r;
        secuencia(r, Qt::NoModifier, false);
        return r;
    }

private:
    const QString &m_t;
    qsizetype m_i = 0;
    int m_profundidad = 0;

    // Keys up to the end, or up to the ")" that closes a group.
    void secuencia(QList<PulsacionTecla> &r, Qt::KeyboardModifiers heredados, bool enGrupo)
    {
        while (m_i < m_t.size()) {
            if (m_t[m_i] == u')') {
                if (!enGrupo)
                    sintaxis(m_t);
                ++m_i;
                return;
            }
            unidad(r, heredados);
        }
        if (enGrupo)
            sintaxis(m_t);
    }

    // One key, one {name}, or one group, with the modifiers written before it.
    void unidad(QList<PulsacionTecla> &r, Qt::KeyboardModifiers m)
    {
        for (;;) {
            if (m_i >= m_t.size())
                sintaxis(m_t);
            const QChar c = m_t[m_i];
            if (c == u'+')
                m |= Qt::ShiftModifier;
            else if (c == u'^')
                m |= Qt::ControlModifier;
            else if (c == u'%')
                m |= Qt::AltModifier;
            else
                break;
            ++m_i;
        }
        const QChar c = m_t[m_i++];
        if (c == u'(') {
            if (++m_profundidad > kMaximaProfundidad)
                sintaxis(m_t);
            secuencia(r, m, true);
            --m_profundidad;
        } else if (c == u'{') {
            llaves(r, m);
        } else if (c == u'~') {
            r.append(conModificadores(nombres().value(QStringLiteral("ENTER")), m));
        } else if (c == u')' || c == u'}') {
            sintaxis(m_t);
        } else {
            r.append(conModificadores(caracter(c), m));
        }
    }

    // {name}, {name n} or {c}: "{}}" is the closing brace itself.
    void llaves(QList<PulsacionTecla> &r, Qt::KeyboardModifiers m)
    {
        const qsizetype desde = m_i;
        const bool llaveCerrada = desde < m_t.size() && m_t[desde] == u'}';
        const qsizetype cierre = m_t.indexOf(u'}', llaveCerrada ? desde + 1 : desde);
        if (cierre < 0)
            sintaxis(m_t);
        const QString dentro = m_t.mid(desde, cierre - desde);
        m_i = cierre + 1;
        QString nombre = dentro;
        int veces = 1;
        const qsizetype blanco = dentro.lastIndexOf(u' ');
        if (blanco > 0) {
            bool ok = false;
            const QStringView numero = QStringView(dentro).mid(blanco + 1);
            veces = numero.toInt(&ok);
            if (!ok || veces < 0 || veces > kMaximoRepeticiones || !numero.front().isDigit())
                sintaxis(m_t);
            nombre = dentro.left(blanco);
        }
        PulsacionTecla p;
        if (nombre.size() == 1)
            p = caracter(nombre[0]);
        else if (const auto it = nombres().constFind(nombre.toUpper()); it != nombres().cend())
            p = *it;
        else
            sintaxis(m_t);
        p = conModificadores(p, m);
        for (int i = 0; i < veces; ++i)
            r.append(p);
    }
};

} // namespace

QList<PulsacionTecla> AnalizarTeclas(const QString &teclas)
{
    return Analizador(teclas).todo();
}

QString TeclasLiterales(const QString &texto)
{
    QString r;
    r.reserve(texto.size());
    for (QChar c : texto) {
        if (QStringView(u"+^%~(){}[]").contains(c))
            r += u'{' + QString(c) + u'}';
        else
            r += c;
    }
    return r;
}

} // namespace kvr
