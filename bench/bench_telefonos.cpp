// Phone book benchmark on synthetic contacts files in code page 850 (accented names, some in
// capitals), each figure beside its reference command run on the same file in the same run:
//   load   LeerFicheroContactos (read, decode, split, sort)   vs  iconv -f CP850 -t UTF-8 | sort -f
//   search one keystroke in the window's search field, from the text change until the grid has
//          painted                                             vs  iconv -f CP850 -t UTF-8 | grep -ci
//   save   GrabarFicheroContactos (check, sort, encode, write, sync)
//                                                              vs  sort -f | iconv -t CP850 > file; sync
// The file separates its lines by CR alone, which sort and grep do not take for line ends (they
// would see one line and have nothing to sort): the references turn CR into LF with tr first, so
// they do the same work as the phone book. They run in the C.UTF-8 locale, where GNU sort and grep
// are faster than in es_ES.UTF-8. Every time is the
// best of several rounds, the machine being shared. Memory is the heap the grid and the search
// text hold after a load, against the file's bytes. Growth from the smallest to the largest file
// is set against n log n and against n. The file is the one the phone book itself writes (the
// generated contacts loaded and saved once, so sorted by name), as a real TELEFONO.DAT is; the
// references run on that same file. "Open" is the load plus the search index, which the first
// keystroke needs; "one more letter" is typing the third letter of the search after the second.
// One MET / NOT MET line per goal at the end.
//
//   bench_telefonos [contacts ...]        (default 10000 100000 1000000)
#include <kvr/buscador.h>
#include <kvr/comunes.h>
#include <kvr/contactos.h>
#include <kvr/telefonos.h>
#include <kvr/visorrejilla.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>

#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

using namespace kvr;

namespace {

struct Aleatorio {
    uint64_t estado = 0x9E3779B97F4A7C15ULL;
    uint32_t operator()(uint32_t tope)
    {
        estado = estado * 6364136223846793005ULL + 1442695040888963407ULL;
        return uint32_t((estado >> 33) % tope);
    }
};

const char *const Nombres[] = {"Ana", "Beatriz", "Carlos", "David", "Elena", "Fernando", "Gloria",
    "Héctor", "Inés", "Javier", "Lucía", "Manuel", "Nuria", "Óscar", "Pilar", "Ramón", "Sofía",
    "Tomás", "Úrsula", "Vicente", "Ángel", "María José", "José Luis", "Begoña", "Íñigo"};
const char *const Apellidos[] = {"García", "Fernández", "González", "Rodríguez", "López",
    "Martínez", "Sánchez", "Pérez", "Gómez", "Martín", "Jiménez", "Ruiz", "Hernández", "Díaz",
    "Moreno", "Muñoz", "Álvarez", "Romero", "Alonso", "Gutiérrez", "Navarro", "Torres",
    "Domínguez", "Vázquez", "Ramos", "Gil", "Ramírez", "Serrano", "Blanco", "Molina", "Castro",
    "Ortega", "Rubio", "Marín", "Sanz", "Núñez", "Iglesias", "Medina", "Garrido", "Cortés"};

QByteArray generar(int n)
{
    Aleatorio azar;
    QString texto = QStringLiteral("\tNombre\tTeléfono\tFax\teMail");
    texto.reserve(qsizetype(n) * 80);
    for (int i = 0; i < n; ++i) {
        QString nombre = QString::fromUtf8(Apellidos[azar(40)]) + u' ' + QString::fromUtf8(Apellidos[azar(40)])
                         + QStringLiteral(", ") + QString::fromUtf8(Nombres[azar(25)]);
        if (azar(4) == 0)
            nombre = nombre.toUpper();
        texto += QStringLiteral("\r\t%1\t%2\t%3\tc%4@ejemplo.es")
                     .arg(nombre)
                     .arg(600000000 + azar(400000000))
                     .arg(azar(3) == 0 ? QString::number(900000000 + azar(99999999)) : QString())
                     .arg(i);
    }
    return BytesDeDos(texto + QStringLiteral("\r\n"));
}

long long heap()
{
    const struct mallinfo2 m = mallinfo2();
    return (long long)(m.uordblks + m.hblkhd);
}

double ms(const QElapsedTimer &t) { return double(t.nsecsElapsed()) / 1e6; }

// Best wall time of a shell command over the rounds.
double comando(const QString &orden, int rondas)
{
    double mejor = 1e300;
    for (int r = 0; r < rondas; ++r) {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        p.setProcessEnvironment(env);
        QElapsedTimer t;
        t.start();
        p.start(QStringLiteral("sh"), {QStringLiteral("-c"), orden});
        p.waitForFinished(-1);
        mejor = std::min(mejor, ms(t));
        if (p.exitCode() > 1)
            std::fprintf(stderr, "falló: %s\n", qPrintable(orden));
    }
    return mejor;
}

template <typename F> double mejorDe(int rondas, F f)
{
    double mejor = 1e300;
    for (int r = 0; r < rondas; ++r) {
        QElapsedTimer t;
        t.start();
        f();
        mejor = std::min(mejor, ms(t));
    }
    return mejor;
}

// Counts the paints of the grid's area, to know when a keystroke's result is on screen.
class Pintadas : public QObject {
public:
    int n = 0;
    bool eventFilter(QObject *, QEvent *e) override
    {
        if (e->type() == QEvent::Paint)
            ++n;
        return false;
    }
};

struct Medida {
    int n = 0;
    qint64 bytes = 0;
    double carga = 0, refCarga = 0;
    double busca = 0, refBusca = 0;
    double graba = 0, refGraba = 0;
    double indice = 0, abre = 0, letraMas = 0;
    long long memoria = 0;
};

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::vector<int> tamanos;
    for (int i = 1; i < argc; ++i)
        tamanos.push_back(std::atoi(argv[i]));
    if (tamanos.empty())
        tamanos = {10000, 100000, 1000000};

    QTemporaryDir dir;
    qputenv("TLF", QFile::encodeName(dir.path()));
    const QString ruta = RutaContactos();
    const QString textoBuscado = QStringLiteral("ana");
    std::vector<Medida> medidas;

    for (const int n : tamanos) {
        Medida m;
        m.n = n;
        const int rondas = n >= 1000000 ? 3 : 5;
        {
            QFile f(ruta);
            f.open(QIODevice::WriteOnly);
            const QByteArray datos = generar(n);
            f.write(datos);
        }
        {
            Rejilla g;
            SelloFichero s = LeerFicheroContactos(ruta, g);
            GrabarFicheroContactos(ruta, g, s);
            m.bytes = QFileInfo(ruta).size();
        }
        const QString q = QLatin1Char('\'') + ruta + QLatin1Char('\'');

        // Load.
        m.refCarga = comando(QStringLiteral("iconv -f CP850 -t UTF-8 %1 | tr '\\r' '\\n' | sort -f > /dev/null").arg(q), rondas);
        m.carga = mejorDe(rondas, [&] {
            Rejilla g;
            LeerFicheroContactos(ruta, g);
        });
        {
            const long long antes = heap();
            Rejilla g;
            LeerFicheroContactos(ruta, g);
            IndiceBusqueda indice;
            QElapsedTimer t;
            t.start();
            indice.Construir(g, {ColNombre, ColTelefono, ColFax, ColEmail});
            m.indice = ms(t);
            m.memoria = heap() - antes;
        }
        m.abre = mejorDe(rondas, [&] {
            Rejilla g;
            LeerFicheroContactos(ruta, g);
            IndiceBusqueda indice;
            indice.Construir(g, {ColNombre, ColTelefono, ColFax, ColEmail});
        });

        // Search: a keystroke in the window, until the grid has painted.
        m.refBusca = comando(QStringLiteral("iconv -f CP850 -t UTF-8 %1 | tr '\\r' '\\n' | grep -ci %2 > /dev/null").arg(q, textoBuscado), rondas);
        {
            auto *t = new Telefonos;
            t->resize(800, 466);
            t->show();
            QCoreApplication::processEvents();
            auto *busco = t->findChild<QLineEdit *>(QStringLiteral("BuscoTLF"));
            auto *vista = t->findChild<VisorRejilla *>(QStringLiteral("Telfs"));
            Pintadas pintadas;
            vista->viewport()->installEventFilter(&pintadas);
            double mejor = 1e300, masUna = 1e300;
            const auto teclear = [&](const QString &texto) {
                const int antes = pintadas.n;
                QElapsedTimer reloj;
                reloj.start();
                busco->setText(texto);
                while (pintadas.n == antes)
                    QCoreApplication::processEvents();
                return ms(reloj);
            };
            for (int r = 0; r < rondas; ++r) {
                mejor = std::min(mejor, teclear(textoBuscado));
                teclear(QString());
                teclear(textoBuscado.left(2));
                masUna = std::min(masUna, teclear(textoBuscado));
                teclear(QString());
            }
            m.busca = mejor;
            m.letraMas = masUna;
            delete t;
        }

        // Save.
        // The reference sorts the decoded text and writes it back in CP850, as a save does.
        comando(QStringLiteral("iconv -f CP850 -t UTF-8 %1 | tr '\\r' '\\n' > %1.u").arg(q), 1);
        m.refGraba = comando(QStringLiteral("sort -f %1.u | iconv -f UTF-8 -t CP850 > %1.ref && sync %1.ref").arg(q), rondas);
        {
            Rejilla g;
            SelloFichero s = LeerFicheroContactos(ruta, g);
            m.graba = mejorDe(rondas, [&] {
                if (GrabarFicheroContactos(ruta, g, s) != ResultadoGrabacion::Grabado)
                    std::fprintf(stderr, "la grabación no se hizo\n");
            });
        }
        QFile::remove(ruta + QStringLiteral(".u"));
        QFile::remove(ruta + QStringLiteral(".ref"));

        std::printf("%8d contactos (%6.1f MB): carga %8.1f ms, iconv|sort -f %8.1f ms (%.2f) | "
                    "búsqueda %6.2f ms, iconv|grep -ci %6.2f ms (%.2f) | grabación %8.1f ms, sort -f|iconv %8.1f ms (%.2f) | "
                    "índice %6.1f ms | apertura %7.1f ms | una letra más %6.2f ms | memoria %.2f bytes por byte\n",
                    n, double(m.bytes) / 1e6, m.carga, m.refCarga, m.carga / m.refCarga, m.busca, m.refBusca,
                    m.busca / m.refBusca, m.graba, m.refGraba, m.graba / m.refGraba, m.indice, m.abre, m.letraMas,
                    double(m.memoria) / double(m.bytes));
        std::fflush(stdout);
        medidas.push_back(m);
    }

    bool todo = true;
    const auto meta = [&](bool cumple, const QString &texto) {
        std::printf("%s: %s\n", cumple ? "MET" : "NOT MET", qPrintable(texto));
        todo = todo && cumple;
    };
    double peorCarga = 0, peorBusca = 0, peorGraba = 0, peorMemoria = 0;
    for (const Medida &m : medidas) {
        peorCarga = std::max(peorCarga, m.carga / m.refCarga);
        peorBusca = std::max(peorBusca, m.busca / m.refBusca);
        peorGraba = std::max(peorGraba, m.graba / m.refGraba);
        peorMemoria = std::max(peorMemoria, double(m.memoria) / double(m.bytes));
    }
    meta(peorCarga <= 0.3, QStringLiteral("carga ≤ 0,3 × iconv | sort -f (peor %1)").arg(peorCarga, 0, 'f', 2));
    meta(peorBusca <= 0.5, QStringLiteral("búsqueda ≤ 0,5 × iconv | grep -ci (peor %1)").arg(peorBusca, 0, 'f', 2));
    for (const Medida &m : medidas) {
        QString cuantos = QString::number(m.n);
        for (qsizetype i = cuantos.size() - 3; i > 0; i -= 3)
            cuantos.insert(i, u' ');
        if (m.n == 1000000) {
            meta(m.abre <= 150.0, QStringLiteral("apertura de %1 contactos ≤ 150 ms (%2 ms)").arg(cuantos).arg(m.abre, 0, 'f', 1));
            meta(m.busca <= 16.0, QStringLiteral("pulsación en %1 contactos ≤ 16 ms (%2 ms)").arg(cuantos).arg(m.busca, 0, 'f', 2));
            meta(m.letraMas <= 5.0, QStringLiteral("una letra más en %1 contactos ≤ 5 ms (%2 ms)").arg(cuantos).arg(m.letraMas, 0, 'f', 2));
            meta(m.graba <= 250.0, QStringLiteral("grabación de %1 contactos ≤ 250 ms (%2 ms)").arg(cuantos).arg(m.graba, 0, 'f', 1));
        } else if (m.n == 100000) {
            meta(m.abre <= 20.0, QStringLiteral("apertura de %1 contactos ≤ 20 ms (%2 ms)").arg(cuantos).arg(m.abre, 0, 'f', 1));
            meta(m.busca <= 3.0, QStringLiteral("pulsación en %1 contactos ≤ 3 ms (%2 ms)").arg(cuantos).arg(m.busca, 0, 'f', 2));
        }
    }
    meta(peorGraba <= 0.5, QStringLiteral("grabación ≤ 0,5 × sort -f | iconv (peor %1)").arg(peorGraba, 0, 'f', 2));
    if (medidas.size() >= 2) {
        const Medida &a = medidas.front(), &b = medidas.back();
        const double nlogn = (double(b.n) * std::log(double(b.n))) / (double(a.n) * std::log(double(a.n)));
        const double carga = b.carga / a.carga, graba = b.graba / a.graba, busca = b.busca / a.busca;
        meta(carga <= nlogn && graba <= nlogn && busca <= nlogn,
             QStringLiteral("crecimiento de %1 a %2 contactos ≤ n log n (×%3): carga ×%4, búsqueda ×%5, grabación ×%6")
                 .arg(a.n).arg(b.n).arg(nlogn, 0, 'f', 0).arg(carga, 0, 'f', 0).arg(busca, 0, 'f', 0).arg(graba, 0, 'f', 0));
        const double lineal = double(b.n) / double(a.n), abre = b.abre / a.abre;
        meta(abre <= lineal && busca <= lineal && graba <= lineal,
             QStringLiteral("crecimiento de %1 a %2 contactos ≤ lineal (×%3): apertura ×%4, búsqueda ×%5, grabación ×%6")
                 .arg(a.n).arg(b.n).arg(lineal, 0, 'f', 0).arg(abre, 0, 'f', 0).arg(busca, 0, 'f', 0).arg(graba, 0, 'f', 0));
    }
    meta(peorMemoria <= 3.0, QStringLiteral("memoria ≤ 3 bytes por byte del fichero (peor %1)").arg(peorMemoria, 0, 'f', 2));
    return todo ? 0 : 1;
}
