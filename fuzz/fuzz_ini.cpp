// Random bytes as an INI file, with a section and a key taken from the input: reading must take
// any file; a value written must read back, the other keys must keep their values, and the bytes
// before the written line must stay as they were. A run-time error (a name the format cannot
// hold) is an allowed outcome; a crash, a hang or a sanitizer report is not.
#include <kvr/error.h>
#include <kvr/ini.h>

#include <QList>
#include <QStringDecoder>

#include <cstdint>
#include <cstdlib>

namespace {

// The reader takes a file as UTF-8 when its bytes are valid UTF-8, as Windows-1252 otherwise.
bool esUtf8(const QByteArray &b)
{
    QStringDecoder d(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString texto = d.decode(b); // decoding happens when the result becomes a string
    Q_UNUSED(texto);
    return !d.hasError();
}

} // namespace

// Input: "section\nkey\nother key\n" then the file's bytes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tam)
{
    const QByteArray entrada(reinterpret_cast<const char *>(datos), qsizetype(tam));
    const QList<QByteArray> partes = entrada.split('\n');
    if (partes.size() < 4)
        return 0;
    const QString seccion = QString::fromUtf8(partes[0]);
    const QString clave = QString::fromUtf8(partes[1]);
    const QString otra = QString::fromUtf8(partes[2]);
    const QByteArray bytes = entrada.mid(partes[0].size() + partes[1].size() + partes[2].size() + 3);
    // The file routines read and write through the text ones; the text is worked on in memory, so
    // that a run costs no file system.
    const QString antesOtra = kvr::LeerIniDeTexto(bytes, seccion, otra, QStringLiteral("\x01"));
    QByteArray despues;
    try {
        despues = kvr::GrabarIniEnTexto(bytes, seccion, clave, QStringLiteral("Valor 1"));
    } catch (const kvr::ErrorEjecucion &) {
        return 0; // refused: nothing is written
    }
    if (kvr::LeerIniDeTexto(despues, seccion, clave) != QStringLiteral("Valor 1"))
        std::abort();
    // The code page is told by the bytes alone: a Windows-1252 file whose only bytes that are not
    // UTF-8 stood in the rewritten value reads as UTF-8 afterwards, and its other non-ASCII text
    // with it. The other key is compared while the file reads in the same code page.
    if (otra.trimmed().compare(clave.trimmed(), Qt::CaseInsensitive) != 0 && esUtf8(bytes) == esUtf8(despues)
        && kvr::LeerIniDeTexto(despues, seccion, otra, QStringLiteral("\x01")) != antesOtra)
        std::abort();
    // Everything up to the first byte that differs is the old file's, and so is everything after
    // the last one: only one stretch changed.
    qsizetype i = 0;
    while (i < bytes.size() && i < despues.size() && bytes[i] == despues[i])
        ++i;
    qsizetype j = 0;
    while (j < bytes.size() - i && j < despues.size() - i
           && bytes[bytes.size() - 1 - j] == despues[despues.size() - 1 - j])
        ++j;
    const QByteArray cambiado = despues.mid(i, despues.size() - i - j);
    if (cambiado.count('\n') > 4) // a key line; or the last line's end, a blank line, a header, a key
        std::abort();
    // The key just written is there to remove (a line goes), and so is its section.
    const auto sinClave = kvr::BorrarIniDeTexto(despues, seccion, clave);
    if (!sinClave || sinClave->size() >= despues.size())
        std::abort();
    // (The section only while the file reads in the same code page: without the key's line, a
    // Windows-1252 file may become valid UTF-8, as above.)
    if (esUtf8(*sinClave) == esUtf8(despues) && !kvr::BorrarIniDeTexto(*sinClave, seccion))
        std::abort();
    return 0;
}
