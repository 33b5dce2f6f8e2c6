// A phone book in a process of its own, for the suites that need several programs on one
// contacts file (the folder comes from TLF):
//   agenda_proceso agregar N PREFIJO
//       opens the window and adds N contacts PREFIJO0.. through the entry panel, one save each,
//       printing "GRABADO name" or "RECHAZADO name: message" for each (any box is answered at
//       once).
//   agenda_proceso alternar FILAS
//       makes two phone books of FILAS contacts, writes the bytes each saves as A.ref and B.ref
//       (once, when they are not there yet),
//       prints "LISTO" and then saves A and B in turn over TELEFONO.DAT until it is killed.
//   agenda_proceso bloquear CERROJO
//       takes the lock file CERROJO as a save does, prints "LISTO" and waits to be killed.
#include <kvr/contactos.h>
#include <kvr/mivisor.h>
#include <kvr/telefonos.h>

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QLockFile>
#include <QSaveFile>
#include <QTextStream>
#include <QThread>
#include <QTimer>

using namespace kvr;

namespace {

int agregar(int n, const QString &prefijo)
{
    QTextStream salida(stdout);
    QString mensaje;
    // Every box is answered at once, its text kept: a box means the save did not happen.
    QTimer vigia;
    QObject::connect(&vigia, &QTimer::timeout, [&] {
        if (QWidget *caja = QApplication::activeModalWidget()) {
            mensaje = caja->findChild<QLabel *>(QStringLiteral("Mensaje"))->text();
            caja->close();
        }
    });
    vigia.start(5);
    Telefonos agenda;
    agenda.show();
    for (int i = 0; i < n; ++i) {
        const QString nombre = prefijo + QString::number(i);
        mensaje.clear();
        agenda.cmdNuevo_Click();
        agenda.findChild<QLineEdit *>(QStringLiteral("Tlf(0)"))->setText(nombre);
        agenda.cmdAceptar_Click();
        if (mensaje.isEmpty())
            salida << "GRABADO " << nombre << Qt::endl;
        else
            salida << "RECHAZADO " << nombre << ": " << mensaje.replace(u'\n', u' ') << Qt::endl;
    }
    return 0;
}

void llenar(Rejilla &g, int filas, const char *extra)
{
    CargarVisor(g, DescriptorContactos);
    g.PonerRedraw(false);
    for (int i = 0; i < filas; ++i)
        g.AddItem(QStringLiteral("\tContacto %1 Muñoz\t952 %2\t952 %3\tc%1@ejemplo.es").arg(i).arg(i % 1000).arg(i % 777));
    g.AddItem(QStringLiteral("\t") + QString::fromUtf8(extra));
    g.RemoveItem(1);
    g.PonerRedraw(true);
    OrdenarContactos(g);
}

int alternar(int filas)
{
    Rejilla a, b;
    llenar(a, filas, "Versión A");
    llenar(b, filas, "Versión B con otro tamaño");
    // The references are written once, whole: a kill while writing them must not leave a
    // reference that a good contacts file would fail to match.
    for (const auto &[g, nombre] : {std::pair{&a, "A.ref"}, std::pair{&b, "B.ref"}}) {
        QSaveFile f(CarpetaContactos() + QString::fromLatin1(nombre));
        if (QFile::exists(f.fileName()))
            continue;
        if (!f.open(QIODevice::WriteOnly) || f.write(TextoContactos(*g)) < 0 || !f.commit())
            return 3;
    }
    QTextStream(stdout) << "LISTO" << Qt::endl;
    SelloFichero sello = SelloDe(RutaContactos());
    for (bool turno = false;; turno = !turno) {
        if (GrabarFicheroContactos(RutaContactos(), turno ? b : a, sello) != ResultadoGrabacion::Grabado)
            return 4;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() >= 4 && args[1] == u"agregar")
        return agregar(args[2].toInt(), args[3]);
    if (args.size() >= 3 && args[1] == u"alternar")
        return alternar(args[2].toInt());
    QLockFile cerrojo(args.value(2));
    if (args.size() < 3 || args[1] != u"bloquear" || !cerrojo.tryLock(0))
        return 2; // uso: agenda_proceso agregar N PREFIJO | alternar FILAS | bloquear CERROJO
    QTextStream(stdout) << "LISTO" << Qt::endl;
    for (;;)
        QThread::sleep(1);
}
