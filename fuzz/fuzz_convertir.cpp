// CP850 conversion and list texts on arbitrary input: the byte table must round-trip every
// byte but NUL, both text forms must agree, and list splitting must not lose characters.
#include <kvr/comunes.h>

#include <QString>
#include <QStringList>

#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t largo)
{
    const QByteArray bytes(reinterpret_cast<const char *>(datos), qsizetype(largo));

    // Bytes to text and back give the same bytes, NUL excepted (it comes back as a blank).
    QByteArray sinNul = bytes;
    sinNul.replace('\0', ' ');
    const QString texto = kvr::TextoDeDos(bytes);
    if (kvr::BytesDeDos(texto) != sinNul)
        std::abort();
    // The QString form of the same conversion agrees with the byte form.
    if (kvr::ConvertirJuego(QString::fromLatin1(bytes), QStringLiteral("WIN")) != texto)
        std::abort();
    if (kvr::ConvertirJuego(texto, QStringLiteral("dos")) != QString::fromLatin1(sinNul))
        std::abort();
    // The bulk routines, which copy ASCII in blocks, agree with the text form both ways.
    std::string utf8;
    kvr::Utf8DeDos(std::string_view(bytes.constData(), std::size_t(bytes.size())), utf8);
    const QByteArray esperado = texto.toUtf8();
    if (std::string_view(esperado.constData(), std::size_t(esperado.size())) != utf8)
        std::abort();
    QByteArray vuelta;
    kvr::DosDeUtf8(utf8, vuelta);
    if (vuelta != sinNul)
        std::abort();

    // Any text from the input (not a file reference): entries joined again give the text back,
    // up to the trailing separator that adds no entry.
    QString lista = QString::fromUtf8(bytes);
    while (lista.startsWith(u'@'))
        lista.remove(0, 1);
    const QStringList entradas = kvr::EntradasDeLista(lista);
    if (entradas.isEmpty())
        std::abort();
    const QString sep = lista.contains(u';') ? QStringLiteral(";")
                        : lista.contains(u"<<") ? QStringLiteral("<<") : QString();
    const QString junto = entradas.join(sep);
    if (junto != lista && junto + sep != lista)
        std::abort();
    return 0;
}
