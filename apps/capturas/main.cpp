// kvr-capturas: opens every window and box of the runtime with sample data and saves a picture of
// each, for the README. Run by "./kvr.sh capturas" under Xvfb, once as it is and once with
// QT_SCALE_FACTOR=2 (the pictures then have twice the pixels, as on a high-density screen).
//   kvr-capturas CARPETA SUFIJO     writes CARPETA/<ventana>SUFIJO.png
#include <kvr/kvr.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPixmap>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <unordered_map>
#include <vector>

namespace {

QString g_carpeta;
QString g_sufijo;
int g_errores = 0;

void esperar(int ms)
{
    QElapsedTimer reloj;
    reloj.start();
    while (reloj.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

// The picture with a palette of at most 256 colours, the ones it uses most, each pixel the nearest
// of them: a window is mostly a few flat colours, which stay exact. Qt's own conversion falls back
// to a fixed colour cube when a picture has more than 256 colours, and a button's shading then
// shows as stripes of a colour it does not have.
QImage conPaleta(const QImage &imagen)
{
    std::unordered_map<QRgb, int> cuenta;
    for (int y = 0; y < imagen.height(); ++y) {
        const auto *fila = reinterpret_cast<const QRgb *>(imagen.constScanLine(y));
        for (int x = 0; x < imagen.width(); ++x)
            ++cuenta[fila[x] | 0xFF000000u];
    }
    std::vector<std::pair<int, QRgb>> orden;
    orden.reserve(cuenta.size());
    for (const auto &[color, n] : cuenta)
        orden.emplace_back(n, color);
    std::sort(orden.begin(), orden.end(), [](const auto &a, const auto &b) { return a.first > b.first || (a.first == b.first && a.second < b.second); });
    QList<QRgb> paleta;
    for (std::size_t i = 0; i < orden.size() && i < 256; ++i)
        paleta << orden[i].second;
    std::unordered_map<QRgb, int> indice;
    const auto cercano = [&paleta](QRgb c) {
        int mejor = 0;
        long menor = -1;
        for (int i = 0; i < paleta.size(); ++i) {
            const long dr = qRed(c) - qRed(paleta[i]), dg = qGreen(c) - qGreen(paleta[i]), db = qBlue(c) - qBlue(paleta[i]);
            const long d = dr * dr * 3 + dg * dg * 4 + db * db * 2;
            if (menor < 0 || d < menor) {
                menor = d;
                mejor = i;
            }
        }
        return mejor;
    };
    QImage r(imagen.size(), QImage::Format_Indexed8);
    r.setColorTable(paleta);
    for (int y = 0; y < imagen.height(); ++y) {
        const auto *fila = reinterpret_cast<const QRgb *>(imagen.constScanLine(y));
        uchar *destino = r.scanLine(y);
        for (int x = 0; x < imagen.width(); ++x) {
            const QRgb c = fila[x] | 0xFF000000u;
            auto it = indice.find(c);
            if (it == indice.end())
                it = indice.emplace(c, cercano(c)).first;
            destino[x] = uchar(it->second);
        }
    }
    return r;
}

// Shows the window, lets it lay itself out and paint, saves it and closes it.
void capturar(const QString &nombre, QWidget *ventana, const std::function<void()> &preparar = {})
{
    ventana->setAttribute(Qt::WA_DeleteOnClose, false);
    ventana->show();
    ventana->raise();
    ventana->activateWindow();
    esperar(150);
    if (preparar) {
        preparar();
        esperar(150);
    }
    const QString fichero = QDir(g_carpeta).filePath(nombre + g_sufijo + QStringLiteral(".png"));
    // A palette of 256 colours keeps the pictures small enough to live in the repository.
    const QImage imagen = conPaleta(ventana->grab().toImage().convertToFormat(QImage::Format_RGB32));
    if (!imagen.save(fichero, "PNG", 0)) {
        (void)std::fprintf(stderr, "no se pudo grabar %s\n", qPrintable(fichero));
        ++g_errores;
    } else {
        std::printf("%s\n", qPrintable(fichero));
    }
    ventana->hide();
    delete ventana;
}

kvr::MyBox *caja(const QString &mensaje, const QString &titulo, int icono, int botones, int omision)
{
    auto *c = new kvr::MyBox;
    float arriba = -1, izquierda = -1;
    c->PonerMensaje(mensaje);
    c->PonerTitulo(titulo);
    c->PonerIcono(icono);
    c->DisponerBotones(botones, omision, arriba, izquierda, nullptr);
    return c;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Contabilidad"));
    QApplication::setApplicationVersion(QStringLiteral("2.1.0"));
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    if (argc < 2) {
        (void)std::fprintf(stderr, "uso: kvr-capturas CARPETA [SUFIJO]\n");
        return 2;
    }
    g_carpeta = QString::fromLocal8Bit(argv[1]);
    g_sufijo = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    QDir().mkpath(g_carpeta);
    const QString datos = QStringLiteral(KVR_DEMO_DATOS);

    // The sample phone book and table are copies: the windows may write to them.
    QTemporaryDir tmp;
    QFile::copy(datos + QStringLiteral("/TELEFONO.DAT"), tmp.filePath(QStringLiteral("TELEFONO.DAT")));
    QFile::copy(datos + QStringLiteral("/provincias.txt"), tmp.filePath(QStringLiteral("provincias.txt")));
    qputenv("TLF", QFile::encodeName(tmp.path()));

    capturar(QStringLiteral("mensaje"),
             caja(QStringLiteral("¿Desea grabar los cambios de la factura 2026/0142?;;Se actualizará el saldo del cliente."),
                  QStringLiteral("Facturación"), kvr::IconoPregunta, 4, 1));
    {
        auto *c = caja(QStringLiteral("Fecha del asiento"), QStringLiteral("Diario"), kvr::IconoPregunta, 2, 1);
        c->PrepararPregunta(QStringLiteral("T(F) L(10) A(I)"), QStringLiteral("15/03/2026"));
        c->PonerAyuda(datos + QStringLiteral("/ayuda_demo.rtf"));
        capturar(QStringLiteral("entrada"), c);
    }
    {
        auto *c = caja(QStringLiteral("Importes a listar"), QStringLiteral("Listado de cobros"), kvr::IconoBuscar, 2, 1);
        c->PrepararPregunta(QStringLiteral("T(N) L(10) A(D) (/)"), QStringLiteral("100ƒ2500"));
        capturar(QStringLiteral("intervalo"), c);
    }
    {
        auto *c = caja(QStringLiteral("Provincia del cliente"), QStringLiteral("Clientes"), kvr::IconoPregunta, 2, 1);
        c->PrepararPregunta(QStringLiteral("TABLA"), QStringLiteral("@") + tmp.filePath(QStringLiteral("provincias.txt")));
        capturar(QStringLiteral("lista"), c);
    }
    {
        auto *c = new kvr::MyBox;
        float arriba = -1, izquierda = -1;
        c->PonerTitulo(QStringLiteral("Elija un cliente"));
        c->PonerIcono(kvr::IconoBuscar);
        c->PrepararVisor(QStringLiteral("Código#7;Nombre#28;Población#16"),
                         {{},
                          {QString(), QStringLiteral("000120"), QStringLiteral("Almacenes González"), QStringLiteral("Albacete")},
                          {QString(), QStringLiteral("000134"), QStringLiteral("Ferretería Núñez"), QStringLiteral("Lugo")},
                          {QString(), QStringLiteral("000157"), QStringLiteral("Muebles Ibáñez"), QStringLiteral("Soria")},
                          {QString(), QStringLiteral("000201"), QStringLiteral("Transportes Peña"), QStringLiteral("Zamora")}});
        c->DisponerBotones(2, 2, arriba, izquierda, nullptr);
        c->PonerColumnaDevolver(QStringLiteral("Código"));
        capturar(QStringLiteral("visor"), c);
    }
    {
        auto *calc = new kvr::MiCalc;
        capturar(QStringLiteral("calculadora"), calc, [calc] {
            kvr::EnviarTeclas(QStringLiteral("1250{+}340{+}75.5~"), calc);
        });
    }
    capturar(QStringLiteral("telefonos"), new kvr::Telefonos);
    capturar(QStringLiteral("impresora"), new kvr::Impresora);
    {
        auto *t = new kvr::frmTablas;
        t->Dimensionar(nullptr, tmp.filePath(QStringLiteral("provincias.txt")), QStringLiteral("Provincia#25"));
        capturar(QStringLiteral("tablas"), t);
    }
    {
        auto *ayuda = new kvr::MiniHelp;
        ayuda->CargarAyuda(datos + QStringLiteral("/ayuda_demo.rtf"));
        ayuda->TituloMiniWeb(QStringLiteral("Ayuda de la demostración"));
        capturar(QStringLiteral("ayuda"), ayuda);
    }
    {
        kvr::BarraProgreso(kvr::ProgresoIniciar, 0, true, 1, 250, QStringLiteral("Copiando ficheros de la empresa"));
        kvr::BarraProgreso(kvr::ProgresoAvanzar, 100, true);
        QWidget *progreso = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == u"Progreso")
                progreso = w;
        if (progreso)
            capturar(QStringLiteral("progreso"), progreso);
        else
            ++g_errores;
    }
    return g_errores == 0 ? 0 : 1;
}
