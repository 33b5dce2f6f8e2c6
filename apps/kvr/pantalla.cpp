// Whether kvr can open a window, asked before Qt starts.
#include "pantalla.h"

#include <QByteArray>

#include <dlfcn.h>

namespace kvr::orden {

namespace {

// The connection that asked whether the X server answers. It stays open until Qt has its own: an
// X server with no other client (Xvfb, a bare session) resets when its last client leaves, and a
// connection made during the reset fails (Qt then aborted now and then).
struct SondaX {
    void (*desconectar)(void *) = nullptr;
    void *conexion = nullptr;
    void cerrar()
    {
        if (conexion && desconectar)
            desconectar(conexion);
        conexion = nullptr;
    }
};
SondaX g_sondaX;

// Whether the X server named by DISPLAY accepts a connection, asked through the same library Qt
// uses (loaded here only for the question, and left loaded: Qt's X plugin loads it next). True
// when the library is not there: Qt decides then.
bool servidorXResponde(const QByteArray &pantalla)
{
    void *xcb = ::dlopen("libxcb.so.1", RTLD_LAZY | RTLD_LOCAL);
    if (!xcb)
        return true;
    using Conectar = void *(*)(const char *, int *);
    using TieneError = int (*)(void *);
    const auto conectar = reinterpret_cast<Conectar>(::dlsym(xcb, "xcb_connect"));
    const auto tieneError = reinterpret_cast<TieneError>(::dlsym(xcb, "xcb_connection_has_error"));
    g_sondaX.desconectar = reinterpret_cast<void (*)(void *)>(::dlsym(xcb, "xcb_disconnect"));
    if (!conectar || !tieneError || !g_sondaX.desconectar)
        return true;
    g_sondaX.conexion = conectar(pantalla.constData(), nullptr);
    const bool responde = g_sondaX.conexion && tieneError(g_sondaX.conexion) == 0;
    if (!responde)
        g_sondaX.cerrar(); // a failed connection is an object too, and is freed the same way
    return responde;
}

} // namespace

bool HayPantalla(QString &motivo)
{
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return true;
    const QByteArray x = qgetenv("DISPLAY");
    if (x.isEmpty()) {
        motivo = QStringLiteral("DISPLAY y WAYLAND_DISPLAY están vacías");
        return false;
    }
    if (!servidorXResponde(x)) {
        motivo = QStringLiteral("no responde el servidor X de DISPLAY=%1").arg(QString::fromLocal8Bit(x));
        return false;
    }
    return true;
}

void CerrarSondaPantalla()
{
    g_sondaX.cerrar();
}

} // namespace kvr::orden
