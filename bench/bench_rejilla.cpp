// Grid benchmark: fills grids of contact-like rows (name, phone, date, amount, e-mail) with
// AddItem, sorts them with OrdenarVisor by the name (text), the date and the amount columns,
// and reports the memory held against the bytes of cell text. The reference is GNU sort -f on
// the same rows, keyed by the name, run in the same process run; figures are given as ratios.
// Each measurement is repeated and the best (least) time kept, since the machine is shared with
// other work; the growth of every sort from the smallest to the largest grid is set against
// the growth of n log n, and the goals are checked at the end, one line each.
//
//   bench_rejilla [rows ...]        (default 10000 100000 1000000)
#include <kvr/mivisor.h>
#include <kvr/numeros.h>
#include <kvr/rejilla.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QRegularExpression>
#include <QStringList>
#include <QTemporaryDir>

#include <malloc.h>
#include <atomic>
#include <cstdlib>
#include <new>
#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

// Bytes held through operator new (std::vector and the like, in this program and in the
// library), with their high-water mark, to see the sort's temporary arrays.
namespace {
std::atomic<long long> g_vivos{0}, g_pico{0};
void *reservar(std::size_t n)
{
    void *p = std::malloc(n ? n : 1);
    if (!p)
        throw std::bad_alloc();
    const long long v = g_vivos.fetch_add((long long)malloc_usable_size(p), std::memory_order_relaxed)
                        + (long long)malloc_usable_size(p);
    long long pico = g_pico.load(std::memory_order_relaxed);
    while (v > pico && !g_pico.compare_exchange_weak(pico, v, std::memory_order_relaxed)) {
    }
    return p;
}
void liberar(void *p) noexcept
{
    if (!p)
        return;
    g_vivos.fetch_sub((long long)malloc_usable_size(p), std::memory_order_relaxed);
    std::free(p);
}
} // namespace
void *operator new(std::size_t n) { return reservar(n); }
void *operator new[](std::size_t n) { return reservar(n); }
void operator delete(void *p) noexcept { liberar(p); }
void operator delete[](void *p) noexcept { liberar(p); }
void operator delete(void *p, std::size_t) noexcept { liberar(p); }
void operator delete[](void *p, std::size_t) noexcept { liberar(p); }

namespace {

// Deterministic generator (64-bit LCG), so every run sorts the same rows.
struct Aleatorio {
    uint64_t estado = 0x2545F4914F6CDD1DULL;
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
const char *const Dominios[] = {"correo.es", "empresa.com", "ejemplo.org", "despacho.net"};

QString sinAcentos(QString s)
{
    s = s.normalized(QString::NormalizationForm_D);
    s.remove(QRegularExpression(QStringLiteral("[^a-zA-Z0-9]")));
    return s.toLower();
}

QStringList generar(int n)
{
    Aleatorio azar;
    QStringList filas;
    filas.reserve(n);
    const QLocale es(QLocale::Spanish, QLocale::Spain);
    for (int i = 0; i < n; ++i) {
        const QString ap1 = QString::fromUtf8(Apellidos[azar(40)]);
        const QString ap2 = QString::fromUtf8(Apellidos[azar(40)]);
        const QString nom = QString::fromUtf8(Nombres[azar(25)]);
        QString nombre = ap1 + u' ' + ap2 + QStringLiteral(", ") + nom;
        if (azar(4) == 0)
            nombre = nombre.toUpper(); // some names typed in capitals
        const QString telefono = QString::number(600000000 + azar(400000000));
        const QString fecha = QStringLiteral("%1/%2/%3")
                                  .arg(1 + azar(28), 2, 10, QChar(u'0'))
                                  .arg(1 + azar(12), 2, 10, QChar(u'0'))
                                  .arg(1990 + azar(36));
        const QString importe = kvr::Formato((double(azar(20000000)) - 2000000.0) / 100.0,
                                             QStringLiteral("#,##0.00"), es);
        const QString correo = sinAcentos(nom) + u'.' + sinAcentos(ap1) + QString::number(azar(1000))
                               + u'@' + QString::fromLatin1(Dominios[azar(4)]);
        filas << nombre + u'\t' + telefono + u'\t' + fecha + u'\t' + importe + u'\t' + correo;
    }
    return filas;
}

// Bytes of heap in use (small blocks and mmapped ones): a delta of it is what a structure holds,
// which the RSS does not show when freed memory is reused.
long long heap()
{
    const struct mallinfo2 m = mallinfo2();
    return (long long)(m.uordblks + m.hblkhd);
}

double ms(const QElapsedTimer &t) { return double(t.nsecsElapsed()) / 1e6; }

// CPU time of this process, and of its finished children, in ms: on a shared machine these
// compare the work done better than wall-clock times do.
double cpuPropio()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}
double cpuHijos()
{
    rusage r{};
    getrusage(RUSAGE_CHILDREN, &r);
    return double(r.ru_utime.tv_sec + r.ru_stime.tv_sec) * 1e3
           + double(r.ru_utime.tv_usec + r.ru_stime.tv_usec) / 1e3;
}

double ultimoCpuSort = 0;

// GNU sort -f keyed by the first field, on the rows written to a file, in the C locale (the
// fastest setting of sort); the time of the whole command.
double tiempoSort(const QString &ruta)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    p.setProcessEnvironment(env);
    QElapsedTimer t;
    t.start();
    const double cpu = cpuHijos();
    p.start(QStringLiteral("sort"), {QStringLiteral("-f"), QStringLiteral("-t\t"), QStringLiteral("-k1,1"),
                                     QStringLiteral("-o"), QStringLiteral("/dev/null"), ruta});
    p.waitForFinished(-1);
    const double r = ms(t);
    ultimoCpuSort = cpuHijos() - cpu;
    if (p.exitCode() != 0)
        std::fprintf(stderr, "sort failed: %s\n", p.readAllStandardError().constData());
    return r;
}

// Best wall and CPU times of one operation over the rounds.
struct Tiempo {
    double pared = 1e300, cpu = 1e300;
    void anotar(double p, double c)
    {
        pared = std::min(pared, p);
        cpu = std::min(cpu, c);
    }
};

// Runs f once and keeps its times.
template <typename F> void medir(Tiempo &t, F f)
{
    QElapsedTimer reloj;
    reloj.start();
    const double cpu = cpuPropio();
    f();
    t.anotar(ms(reloj), cpuPropio() - cpu);
}

struct Medida {
    int n;
    double llenar;
    Tiempo texto, fecha, importe, sortf;
    qint64 bytesTexto, bytesRejilla;
    long long heapRejilla, heapQString;
    long long temporalTexto; // most bytes the text sort held beyond the grid
};

constexpr int Rondas = 5;

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    std::vector<int> tamanos;
    for (int i = 1; i < argc; ++i)
        tamanos.push_back(std::atoi(argv[i]));
    if (tamanos.empty())
        tamanos = {10000, 100000, 1000000};
    std::sort(tamanos.begin(), tamanos.end());

    std::printf("Each time is the best of %d rounds: the machine's cores are shared with other "
                "work, and the least time is the one least disturbed by it.\n\n", Rondas);
    QTemporaryDir dir;
    std::vector<Medida> medidas;
    for (int n : tamanos) {
        Medida m{};
        m.n = n;
        QStringList filas = generar(n);
        const QString ruta = dir.filePath(QStringLiteral("filas_%1.txt").arg(n));
        {
            QFile f(ruta);
            f.open(QIODevice::WriteOnly);
            f.write(filas.join(u'\n').toUtf8());
            f.write("\n");
        }
        // Reference: the same rows held as one QString per cell.
        {
            const long long antes = heap();
            std::vector<QStringList> celdas;
            celdas.reserve(std::size_t(n));
            for (const QString &f : filas)
                celdas.push_back(f.split(u'\t'));
            m.heapQString = heap() - antes;
        }
        const long long antes = heap();
        auto *r = new kvr::Rejilla;
        kvr::CargarVisor(*r, QStringLiteral("Nombre#34;Teléfono#12;Fecha#10;Importe#12>;eMail#30"));
        r->PonerTag(QStringLiteral("  FI "));
        r->PonerRows(1);
        r->PonerRedraw(false);
        QElapsedTimer t;
        t.start();
        for (const QString &f : filas)
            r->AddItem(f);
        m.llenar = ms(t);
        r->PonerRedraw(true);
        m.heapRejilla = heap() - antes;
        m.bytesTexto = r->BytesTexto();
        m.bytesRejilla = r->BytesOcupados();

        // Rounds of text, date and amount sorts, each starting from the order the last one left
        // (unrelated to the next key), and of sort -f.
        for (int ronda = 0; ronda < Rondas; ++ronda) {
            const long long vivos = g_vivos.load();
            g_pico.store(vivos);
            medir(m.texto, [&] { kvr::OrdenarVisor(*r, 0); });
            m.temporalTexto = std::max(m.temporalTexto, g_pico.load() - vivos);
            medir(m.fecha, [&] { kvr::OrdenarVisor(*r, 2); });
            medir(m.importe, [&] { kvr::OrdenarVisor(*r, 3); });
            const double pared = tiempoSort(ruta);
            m.sortf.anotar(pared, ultimoCpuSort);
        }
        // A look at the result, so that the work is visibly done.
        std::printf("n=%d first rows by amount: %s | %s\n", n, qPrintable(r->TextMatrix(1, 3)),
                    qPrintable(r->TextMatrix(2, 3)));
        delete r;
        medidas.push_back(m);
    }

    std::printf("\nWall time (ms)\n%9s %10s %10s %10s %10s %10s %9s %9s\n", "rows", "AddItem",
                "text", "date", "amount", "sort -f", "text/sort", "fill/sort");
    for (const Medida &m : medidas)
        std::printf("%9d %10.1f %10.1f %10.1f %10.1f %10.1f %9.2f %9.2f\n", m.n, m.llenar,
                    m.texto.pared, m.fecha.pared, m.importe.pared, m.sortf.pared,
                    m.texto.pared / m.sortf.pared, m.llenar / m.sortf.pared);
    std::printf("\nCPU time (ms)\n%9s %10s %10s %10s %10s %9s\n", "rows", "text", "date", "amount",
                "sort -f", "text/sort");
    for (const Medida &m : medidas)
        std::printf("%9d %10.1f %10.1f %10.1f %10.1f %9.2f\n", m.n, m.texto.cpu, m.fecha.cpu,
                    m.importe.cpu, m.sortf.cpu, m.texto.cpu / m.sortf.cpu);
    std::printf("\nMemory, in bytes per byte of cell text\n%9s %12s %9s %9s %11s %12s %9s\n", "rows",
                "text MB", "held", "heap", "text sort", "held + sort", "QString");
    for (const Medida &m : medidas)
        std::printf("%9d %12.1f %9.2f %9.2f %11.2f %12.2f %9.2f\n", m.n, double(m.bytesTexto) / 1e6,
                    double(m.bytesRejilla) / double(m.bytesTexto),
                    double(m.heapRejilla) / double(m.bytesTexto),
                    double(m.temporalTexto) / double(m.bytesTexto),
                    double(m.bytesRejilla + m.temporalTexto) / double(m.bytesTexto),
                    double(m.heapQString) / double(m.bytesTexto));
    std::printf("(\"text sort\": the most the text sort held at once beyond the grid, its keys and "
                "work arrays)\n");

    const Medida &a = medidas.front(), &b = medidas.back();
    const auto nlogn = [](double n) { return n * std::log(n); };
    const double esperado = nlogn(b.n) / nlogn(a.n);
    if (medidas.size() >= 2) {
        std::printf("\nGrowth from %d to %d rows (n log n grows x%.1f; a quotient above 1 is "
                    "faster growth than n log n)\n%10s %12s %9s %12s %9s\n",
                    a.n, b.n, esperado, "", "wall", "/nlogn", "CPU", "/nlogn");
        const auto fila = [&](const char *nombre, const Tiempo Medida::*campo) {
            const double pared = (b.*campo).pared / (a.*campo).pared;
            const double cpu = (b.*campo).cpu / (a.*campo).cpu;
            std::printf("%10s %11.1fx %9.2f %11.1fx %9.2f\n", nombre, pared, pared / esperado, cpu,
                        cpu / esperado);
        };
        fila("text", &Medida::texto);
        fila("date", &Medida::fecha);
        fila("amount", &Medida::importe);
        fila("sort -f", &Medida::sortf);
    }

    // The goals, judged on the largest grid (which should be the million rows).
    std::printf("\nGoals (largest grid: %d rows)\n", b.n);
    const auto objetivo = [](bool cumplido, const QString &texto) {
        std::printf("  %-8s %s\n", cumplido ? "MET" : "NOT MET", qPrintable(texto));
    };
    objetivo(b.texto.pared < 1000.0,
             QStringLiteral("text sort under 1 s: %1 ms").arg(b.texto.pared, 0, 'f', 1));
    objetivo(b.texto.pared <= 0.5 * b.sortf.pared && b.texto.cpu <= 0.5 * b.sortf.cpu,
             QStringLiteral("text sort at most half the time of sort -f: %1 of it in wall time, "
                            "%2 in CPU time")
                 .arg(b.texto.pared / b.sortf.pared, 0, 'f', 2)
                 .arg(b.texto.cpu / b.sortf.cpu, 0, 'f', 2));
    if (medidas.size() >= 2) {
        const double cpu = b.texto.cpu / a.texto.cpu, pared = b.texto.pared / a.texto.pared;
        objetivo(cpu <= esperado,
                 QStringLiteral("text sort growing no faster than n log n from %1 to %2 rows: CPU "
                                "time x%3 against x%4 (wall time x%5)")
                     .arg(a.n).arg(b.n)
                     .arg(cpu, 0, 'f', 1)
                     .arg(esperado, 0, 'f', 1)
                     .arg(pared, 0, 'f', 1));
    }
    objetivo(b.fecha.pared <= 2.0 * b.texto.pared && b.importe.pared <= 2.0 * b.texto.pared,
             QStringLiteral("date and amount sorts at most twice the text sort: %1 and %2 of it")
                 .arg(b.fecha.pared / b.texto.pared, 0, 'f', 2)
                 .arg(b.importe.pared / b.texto.pared, 0, 'f', 2));
    bool memoria = true;
    double peor = 0, peorConOrden = 0;
    for (const Medida &m : medidas) {
        const double held = double(m.bytesRejilla) / double(m.bytesTexto);
        const double conOrden = double(m.bytesRejilla + m.temporalTexto) / double(m.bytesTexto);
        peor = std::max(peor, held);
        peorConOrden = std::max(peorConOrden, conOrden);
        memoria = memoria && conOrden <= 4.0;
    }
    objetivo(memoria, QStringLiteral("at most 4 bytes per byte of cell text: at most %1 held, "
                                     "%2 while the text sort runs")
                          .arg(peor, 0, 'f', 2)
                          .arg(peorConOrden, 0, 'f', 2));
    return 0;
}
