// Grid benchmark: fills grids of contact-like rows (name, phone, date, amount, e-mail) with
// AddItem, sorts them with OrdenarVisor by the name (text), the date and the amount columns,
// and reports the memory held against the bytes of cell text. The reference is GNU sort -f on
// the same rows, keyed by the name, run in the same process run; figures are given as ratios.
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
#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

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

struct Medida {
    int n;
    double llenar, texto, fecha, importe, sortf, cpuTexto, cpuSortf;
    qint64 bytesTexto, bytesRejilla;
    long long heapRejilla, heapQString;
};

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

        // Three rounds of text, date and amount sorts, each starting from the order the last one
        // left (unrelated to the next key); the best time of each, as for sort -f, since the
        // machine is shared.
        m.texto = m.fecha = m.importe = m.sortf = m.cpuTexto = m.cpuSortf = 1e300;
        for (int ronda = 0; ronda < 3; ++ronda) {
            t.restart();
            const double cpu = cpuPropio();
            kvr::OrdenarVisor(*r, 0);
            m.cpuTexto = std::min(m.cpuTexto, cpuPropio() - cpu);
            m.texto = std::min(m.texto, ms(t));
            t.restart();
            kvr::OrdenarVisor(*r, 2);
            m.fecha = std::min(m.fecha, ms(t));
            t.restart();
            kvr::OrdenarVisor(*r, 3);
            m.importe = std::min(m.importe, ms(t));
            m.sortf = std::min(m.sortf, tiempoSort(ruta));
            m.cpuSortf = std::min(m.cpuSortf, ultimoCpuSort);
        }
        // A look at the result, so that the work is visibly done.
        std::printf("n=%d first rows by amount: %s | %s\n", n, qPrintable(r->TextMatrix(1, 3)),
                    qPrintable(r->TextMatrix(2, 3)));
        delete r;
        medidas.push_back(m);
    }

    std::printf("\n%9s %10s %10s %10s %10s %10s %9s %9s %8s %8s %8s\n", "rows", "AddItem ms",
                "text ms", "date ms", "amount ms", "sort -f ms", "text/sort", "fill/sort",
                "held/txt", "heap/txt", "QStr/txt");
    for (const Medida &m : medidas)
        std::printf("%9d %10.1f %10.1f %10.1f %10.1f %10.1f %9.2f %9.2f %8.2f %8.2f %8.2f\n", m.n,
                    m.llenar, m.texto, m.fecha, m.importe, m.sortf, m.texto / m.sortf,
                    m.llenar / m.sortf, double(m.bytesRejilla) / double(m.bytesTexto),
                    double(m.heapRejilla) / double(m.bytesTexto),
                    double(m.heapQString) / double(m.bytesTexto));
    std::printf("\nCPU time (ms): %9s %12s %12s %10s\n", "rows", "text sort", "sort -f", "ratio");
    for (const Medida &m : medidas)
        std::printf("               %9d %12.1f %12.1f %10.2f\n", m.n, m.cpuTexto, m.cpuSortf,
                    m.cpuTexto / m.cpuSortf);
    if (medidas.size() >= 2) {
        const Medida &a = medidas.front(), &b = medidas.back();
        const auto nlogn = [](double n) { return n * std::log2(n); };
        const double esperado = nlogn(b.n) / nlogn(a.n);
        std::printf("\ngrowth %d -> %d rows: text sort x%.1f, sort -f x%.1f, n log n x%.1f "
                    "(text sort growth / n log n = %.2f)\n",
                    a.n, b.n, b.texto / a.texto, b.sortf / a.sortf, esperado, b.texto / a.texto / esperado);
        std::printf("growth in CPU time: text sort x%.1f, sort -f x%.1f (text sort growth / n log n = %.2f)\n",
                    b.cpuTexto / a.cpuTexto, b.cpuSortf / a.cpuSortf, b.cpuTexto / a.cpuTexto / esperado);
    }
    return 0;
}
