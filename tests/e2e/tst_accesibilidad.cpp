// Every window of the runtime as a screen reader sees it, in process (the same read out of process
// over AT-SPI, with what the reader hears while the user types, is accesibilidad_atspi.py): the
// roles and names of the controls Qt alone would expose badly; then each window opened offscreen,
// its accessibility tree walked from the window down, and every visible control that can take the
// focus must have a name to be read out and be reached by Tab. Panels that a window shows later
// are opened by their own rows. The items of lists and grids are read by their own text and are
// not walked.
#include <kvr/kvr.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

namespace {

void sinNombre(QAccessibleInterface *iface, QStringList &faltan, int profundidad = 0)
{
    if (!iface || profundidad > 40)
        return;
    const QAccessible::State estado = iface->state();
    if (estado.invisible)
        return;
    QObject *o = iface->object();
    if (estado.focusable && iface->text(QAccessible::Name).trimmed().isEmpty())
        faltan << u"sin nombre: "_qs + (o ? QString::fromLatin1(o->metaObject()->className()) + u' ' + o->objectName()
                     : QStringLiteral("?"));
    if (qobject_cast<QAbstractItemView *>(o) || qobject_cast<QComboBox *>(o))
        return;
    for (int i = 0; i < iface->childCount(); ++i)
        sinNombre(iface->child(i), faltan, profundidad + 1);
}

using Fabrica = std::function<QWidget *(const QString &carpeta)>;

QString papel(QAccessible::Role rol)
{
    return QString::number(int(rol), 16);
}

} // namespace

Q_DECLARE_METATYPE(Fabrica)

class TstAccesibilidad : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
private Q_SLOTS:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        QVERIFY(m_dir.isValid());
        QFile::copy(QStringLiteral(KVR_DEMO_DATOS "/TELEFONO.DAT"), m_dir.filePath(QStringLiteral("TELEFONO.DAT")));
        QFile tabla(m_dir.filePath(QStringLiteral("tabla.txt")));
        QVERIFY(tabla.open(QIODevice::WriteOnly));
        tabla.write("LUGO\r\nMADRID\r\n");
        qputenv("TLF", QFile::encodeName(m_dir.path()));
    }

    void ventanas_data()
    {
        QTest::addColumn<Fabrica>("fabrica");
        QTest::newRow("MiCalc") << Fabrica([](const QString &) { return new kvr::MiCalc; });
        QTest::newRow("MyBox mensaje") << Fabrica([](const QString &) {
            auto *c = new kvr::MyBox;
            float t = -1, l = -1;
            c->PonerMensaje(QStringLiteral("¿Seguimos?"));
            c->DisponerBotones(4, 1, t, l, nullptr);
            return c;
        });
        QTest::newRow("MyBox intervalo") << Fabrica([](const QString &) {
            auto *c = new kvr::MyBox;
            float t = -1, l = -1;
            c->DisponerBotones(2, 1, t, l, nullptr);
            c->PrepararPregunta(QStringLiteral("T(F) L(10) A(I) (/)"), QString());
            c->PonerAyuda(QStringLiteral(KVR_DEMO_DATOS "/ayuda_demo.rtf"));
            return c;
        });
        QTest::newRow("MyBox lista y visor") << Fabrica([](const QString &) {
            auto *c = new kvr::MyBox;
            float t = -1, l = -1;
            c->DisponerBotones(2, 2, t, l, nullptr);
            c->PrepararPregunta(QStringLiteral("TABLA"), QStringLiteral("a;b"));
            c->PrepararVisor(QStringLiteral("Código#6;Nombre#20"), {{}, {QString(), QStringLiteral("1"), QStringLiteral("Ana")}});
            return c;
        });
        QTest::newRow("frmTablas") << Fabrica([](const QString &carpeta) {
            auto *t = new kvr::frmTablas;
            t->Dimensionar(nullptr, carpeta + QStringLiteral("/tabla.txt"), QStringLiteral("Provincia#25"));
            return t;
        });
        QTest::newRow("MiniHelp") << Fabrica([](const QString &) {
            auto *m = new kvr::MiniHelp;
            m->CargarAyuda(QStringLiteral(KVR_DEMO_DATOS "/ayuda_demo.rtf"));
            return m;
        });
        QTest::newRow("Telefonos") << Fabrica([](const QString &) { return new kvr::Telefonos; });
        QTest::newRow("Telefonos, ficha") << Fabrica([](const QString &) {
            auto *t = new kvr::Telefonos;
            t->show();
            t->cmdNuevo_Click();
            return t;
        });
        QTest::newRow("Impresora") << Fabrica([](const QString &) { return new kvr::Impresora; });
        QTest::newRow("Progreso") << Fabrica([](const QString &) {
            kvr::BarraProgreso(kvr::ProgresoIniciar, 0, false, 0, 10, QStringLiteral("Copia"));
            for (QWidget *w : QApplication::topLevelWidgets())
                if (w->objectName() == u"Progreso")
                    return w;
            return static_cast<QWidget *>(nullptr);
        });
    }
    // What a reader meets on the controls that Qt alone would expose badly: role, name, value.
    void lectura_data()
    {
        QTest::addColumn<Fabrica>("fabrica");
        QTest::addColumn<QString>("control"); // its object name; empty for the window
        QTest::addColumn<QString>("esperado"); // role (hexadecimal), name, value / column count
        const auto caja = [](int botones, const QString &tag, const QString &valor) {
            return Fabrica([=](const QString &) {
                auto *c = new kvr::MyBox;
                float t = -1, l = -1;
                c->PonerMensaje(QStringLiteral("Provincia de envío"));
                c->PonerTitulo(QStringLiteral("Envío"));
                c->DisponerBotones(botones, 1, t, l, nullptr);
                if (!tag.isEmpty())
                    c->PrepararPregunta(tag, valor);
                return c;
            });
        };
        const Fabrica calculadora([](const QString &) { return new kvr::MiCalc; });
        const Fabrica telefonos([](const QString &) { return new kvr::Telefonos; });
        const auto fila = [](const char *nombre, const Fabrica &f, const char *control, QAccessible::Role rol,
                             const QString &resto) {
            QTest::newRow(nombre) << f << QString::fromLatin1(control) << papel(rol) + u'|' + resto;
        };
        fila("calculadora: ventana", calculadora, "", QAccessible::Window, u"Calculadora|"_qs);
        fila("calculadora: pantalla como texto", calculadora, "Pantalla", QAccessible::EditableText, u"Resultado|0.00  "_qs);
        fila("calculadora: casilla por su fin", calculadora, "FijarUp", QAccessible::CheckBox, u"Siempre visible|"_qs);
        fila("teléfonos: ventana", telefonos, "", QAccessible::Window, u"Teléfonos|"_qs);
        fila("teléfonos: columnas visibles", telefonos, "Telfs", QAccessible::Table, u"Contactos|4"_qs);
        fila("caja: botón", caja(3, {}, {}), "Boton(0)", QAccessible::Button, u"No|"_qs);
        fila("caja: franja de título", caja(1, {}, {}), "etiTitulo", QAccessible::TitleBar, u"Envío|"_qs);
        fila("caja: campo por su pregunta", caja(2, u"T(M) L(15) A(I)"_qs, {}), "CampoTexto", QAccessible::EditableText,
             u"Provincia de envío|"_qs);
        fila("caja: lista por su pregunta", caja(2, u"TABLA"_qs, u"LUGO;SORIA"_qs), "cbxTabla", QAccessible::ComboBox,
             u"Provincia de envío|LUGO"_qs);
        fila("impresora: lista por su etiqueta", Fabrica([](const QString &) { return new kvr::Impresora; }),
             "ListaImpresoras", QAccessible::ComboBox, u"Impresoras|"_qs);
    }
    void lectura()
    {
        QFETCH(Fabrica, fabrica);
        QFETCH(QString, control);
        QFETCH(QString, esperado);
        std::unique_ptr<QWidget> ventana(fabrica(m_dir.path()));
        ventana->setAttribute(Qt::WA_DeleteOnClose, false);
        ventana->show();
        QCoreApplication::processEvents();
        QObject *objeto = control.isEmpty() ? ventana.get() : ventana->findChild<QObject *>(control);
        QVERIFY(objeto);
        QAccessibleInterface *i = QAccessible::queryAccessibleInterface(objeto);
        QVERIFY(i);
        QString resto = i->text(QAccessible::Value);
        if (QAccessibleTableInterface *t = i->tableInterface())
            resto = QString::number(t->columnCount());
        if (control == u"ListaImpresoras" || control == u"FijarUp")
            resto.clear(); // the queues of the machine; the tick
        QCOMPARE(papel(i->role()) + u'|' + i->text(QAccessible::Name) + u'|' + resto, esperado);
        if (control == u"etiTitulo") // the title is said once: the strip is kept from the reader
            QVERIFY(i->state().invisible);
    }

    // Each window opened, its accessibility tree walked, then Tab pressed from the keyboard
    // alone: every visible control that takes the focus by Tab must be reached, and none may
    // keep it (a grid that moved between its cells with Tab would hold the user there).
    void ventanas()
    {
        QFETCH(Fabrica, fabrica);
        QPointer<QWidget> ventana = fabrica(m_dir.path());
        QVERIFY(ventana);
        ventana->show();
        ventana->activateWindow();
        QCoreApplication::processEvents();
        QStringList faltan;
        sinNombre(QAccessible::queryAccessibleInterface(ventana.data()), faltan);
        QSet<QWidget *> esperados;
        for (QWidget *w : ventana->findChildren<QWidget *>())
            if (w->isVisibleTo(ventana) && w->isEnabled() && (w->focusPolicy() & Qt::TabFocus)
                && !w->focusProxy() && w->window() == ventana)
                esperados.insert(w);
        for (int i = 0; i < 3 * esperados.size() + 3 && ventana; ++i) {
            QWidget *foco = QApplication::focusWidget();
            if (!foco || foco->window() != ventana)
                break;
            esperados.remove(foco);
            QTest::keyClick(foco, Qt::Key_Tab);
            QCoreApplication::processEvents();
        }
        for (QWidget *w : std::as_const(esperados))
            faltan << u"sin alcanzar con Tab: "_qs + w->objectName();
        if (ventana) {
            ventana->setAttribute(Qt::WA_DeleteOnClose, false);
            ventana->hide();
            delete ventana.data();
        }
        QVERIFY2(faltan.isEmpty(), qPrintable(faltan.join(u", "_qs)));
    }
};

QTEST_MAIN(TstAccesibilidad)
#include "tst_accesibilidad.moc"
