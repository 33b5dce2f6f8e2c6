// MiExplorer against a web server of the test's own on 127.0.0.1 and against a closed port.
// With QtWebEngine the page is shown inside the window; without it, the page goes to the
// desktop's browser (caught here by a URL handler).
#include <kvr/minihelp.h>

#include "comun/pruebas.h"

#include <QDesktopServices>
#include <QPalette>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextEdit>

#ifdef KVR_CON_WEBENGINE
#include <QWebEngineView>
#endif

using namespace kvr;
using namespace prueba;

namespace {

// A tiny HTTP server: "/" is a help page, anything else is not found.
class Servidor : public QObject {
    Q_OBJECT
public:
    Servidor()
    {
        m_servidor.listen(QHostAddress::LocalHost);
        connect(&m_servidor, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *s = m_servidor.nextPendingConnection())
                connect(s, &QTcpSocket::readyRead, s, [this, s] { Atender(s); });
        });
    }
    QString Url(const QString &ruta) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(m_servidor.serverPort()).arg(ruta);
    }

private:
    void Atender(QTcpSocket *s)
    {
        QByteArray &buf = m_buffers[s];
        buf += s->readAll();
        if (!buf.contains("\r\n\r\n"))
            return;
        const QByteArray ruta = buf.split(' ').value(1);
        m_buffers.remove(s);
        if (ruta == "/lenta")  // never answers
            return;
        QByteArray cuerpo, estado;
        if (ruta == "/") {
            estado = "200 OK";
            cuerpo = "<html><head><meta charset=\"utf-8\"><title>Ayuda de prueba</title></head>"
                     "<body><p>Página de ayuda</p></body></html>";
        } else {
            estado = "404 Not Found";
            cuerpo = "<html><body>No encontrada</body></html>";
        }
        s->write("HTTP/1.1 " + estado + "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: "
                 + QByteArray::number(cuerpo.size()) + "\r\nConnection: close\r\n\r\n" + cuerpo);
        s->disconnectFromHost();
        connect(s, &QTcpSocket::disconnected, s, &QObject::deleteLater);
    }
    QTcpServer m_servidor;
    QHash<QTcpSocket *, QByteArray> m_buffers;
};

// A port on 127.0.0.1 where nothing listens.
quint16 PuertoCerrado()
{
    QTcpServer s;
    s.listen(QHostAddress::LocalHost);
    const quint16 p = s.serverPort();
    s.close();
    return p;
}

} // namespace

// Records the pages handed to the desktop's browser.
class Navegador : public QObject {
    Q_OBJECT
public:
    QList<QUrl> abiertas;
public Q_SLOTS:
    void abrir(const QUrl &url) { abiertas.append(url); }
};

class TestMiniHelpWeb : public QObject {
    Q_OBJECT
    Servidor servidor;
private Q_SLOTS:
    void pagina_data()
    {
        QTest::addColumn<bool>("mostrada");
        QTest::addColumn<int>("llamadas");
        // The host's usual order: fill the window, then show it modally.
        QTest::newRow("antes de mostrarla, luego modal") << false << 1;
        QTest::newRow("segunda llamada no redibuja") << true << 2;
    }

    void pagina()
    {
        QFETCH(bool, mostrada); QFETCH(int, llamadas);
        MiniHelp v;
        if (mostrada) {
            v.show();
            QApplication::processEvents();
        }
        const QString url = servidor.Url(u"/"_qs);
#ifndef KVR_CON_WEBENGINE
        Navegador navegador;
        QDesktopServices::setUrlHandler(u"http"_qs, &navegador, "abrir");
#endif
        bool problema = true;
        for (int i = 0; i < llamadas; ++i) {
            problema = true;
            v.MiExplorer(url, problema);
        }
#ifndef KVR_CON_WEBENGINE
        QDesktopServices::unsetUrlHandler(u"http"_qs);
        QCOMPARE(navegador.abiertas.size(), llamadas);
        QCOMPARE(navegador.abiertas.first(), QUrl(url));
#endif
        QVERIFY(!problema);
        QVERIFY(!v.ErrorNavegacion());
        QWidget *web = v.findChild<QWidget *>(u"MiniWeb"_qs);
        QWidget *tira = v.findChild<QWidget *>(u"MiVersion"_qs);
        QVERIFY(!web->isHidden());
        QVERIFY(!tira->isHidden());
        QCOMPARE(tira->property("texto").toString(), MiniHelp::TextoVersion());
        QCOMPARE(tira->property("dibujos").toInt(), 1);
        QCOMPARE(v.isVisible(), mostrada);
        const QColor azul = v.findChild<QTextEdit *>(u"TextoAyuda"_qs)->palette().color(QPalette::Base);
        QCOMPARE(azul, QColor(0x80, 0x80, 0xFF));
#ifdef KVR_CON_WEBENGINE
        auto *vista = qobject_cast<QWebEngineView *>(web);
        QVERIFY(vista);
        QCOMPARE(vista->title(), u"Ayuda de prueba"_qs);
        QCOMPARE(vista->url(), QUrl(url));
#endif
        if (!mostrada) {
            bool webVisible = false;
            alAbrirse([&](QWidget *m) {
                webVisible = control(m, "MiniWeb")->isVisible();
                QTest::mouseClick(control(m, "cmdCerrar"), Qt::LeftButton);
            });
            QCOMPARE(v.exec(), int(QDialog::Rejected));
            QVERIFY(webVisible);
        }
    }

    void fallo_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("soloConMotor");  // the desktop's browser reports no failures to us
        QTest::newRow("puerto cerrado") << QStringLiteral("http://127.0.0.1:%1/").arg(PuertoCerrado()) << true;
        QTest::newRow("pagina no encontrada") << servidor.Url(u"/falta.html"_qs) << true;
        QTest::newRow("direccion vacia") << QString() << false;
    }

    void fallo()
    {
        QFETCH(QString, url);
#ifndef KVR_CON_WEBENGINE
        QFETCH(bool, soloConMotor);
        if (soloConMotor)
            QSKIP("built without QtWebEngine: the desktop's browser shows this page");
#endif
        MiniHelp v;
        v.show();
        QApplication::processEvents();
        bool problema = false;
        v.MiExplorer(url, problema);
        QVERIFY(problema);
        QVERIFY(v.ErrorNavegacion());
        QVERIFY(!v.isVisible());
        QVERIFY(v.findChild<QWidget *>(u"MiniWeb"_qs)->isHidden());
        QCOMPARE(v.findChild<QWidget *>(u"MiVersion"_qs)->property("dibujos").toInt(), 0);
    }

    void cerrarMientrasCarga()
    {
#ifndef KVR_CON_WEBENGINE
        QSKIP("built without QtWebEngine: nothing loads inside the window");
#endif
        // A page that never arrives: the user's Cerrar ends the wait.
        MiniHelp v;
        v.show();
        QApplication::processEvents();
        QTimer::singleShot(300, &v, [&v] {
            QTest::mouseClick(v.findChild<QWidget *>(u"cmdCerrar"_qs), Qt::LeftButton);
        });
        bool problema = false;
        v.MiExplorer(servidor.Url(u"/lenta"_qs), problema);
        QVERIFY(problema);
        QVERIFY(!v.isVisible());
    }
};

QTEST_MAIN(TestMiniHelpWeb)
#include "tst_minihelp_web.moc"
