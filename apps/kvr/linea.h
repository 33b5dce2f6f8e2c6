#pragma once
// The kvr command's line read into an order, its options and its positional arguments, without
// Qt's GUI: the command itself and its fuzzer share it.
#include <QString>
#include <QStringList>

#include <map>
#include <optional>

namespace kvr::orden {

// What an order accepts on its line.
struct ReglasOrden {
    QString nombre;
    QStringList conValor;  // options that take a value
    QStringList banderas;  // options without one
    int minimo = 0;        // positional arguments, at least
    int maximo = 0;        // and at most
    bool ventana = false;  // opens a window: --timeout too
    QStringList repetibles; // options with a value that may come more than once (in conValor too)
};

struct Argumentos {
    QString orden;
    std::map<QString, QString> opciones;    // the last value of each option
    std::map<QString, QStringList> listas;  // every value of a repeatable option, in order
    QStringList posicionales;
    bool tiene(const char *o) const { return opciones.count(QString::fromLatin1(o)) > 0; }
    QString valor(const char *o, const QString &omision = {}) const
    {
        const auto i = opciones.find(QString::fromLatin1(o));
        return i == opciones.end() ? omision : i->second;
    }
    QStringList valores(const char *o) const
    {
        const auto i = listas.find(QString::fromLatin1(o));
        return i == listas.end() ? QStringList() : i->second;
    }
};

// The outcome of reading a line: the arguments, or the order's own help asked for (--help), or a
// Spanish complaint about the line.
struct Lectura {
    Argumentos argumentos;
    bool ayuda = false;
    QString error;
};

// Reads the words after the order's name: "--name value", "--name=value", flags, "--" before
// positional words that begin with "--", and the counts of positional arguments.
Lectura LeerLinea(const QStringList &palabras, const ReglasOrden &e);

// An amount as people write it: "1234,56", "1234.56", "1.234,56", "1,234.56", "1.234.567". When
// both marks appear the last one is the decimal one and the other groups thousands (in groups of
// three); a mark that appears more than once groups thousands. One mark alone followed by exactly
// three digits ("1.234", "1,234") could be either and is refused: `problema` then says so.
std::optional<double> LeerCantidad(const QString &texto, QString &problema);

// --timeout's seconds (a fraction allowed, with "." or ","), 0 to 86 400, in milliseconds.
std::optional<int> LeerSegundos(const QString &texto);

} // namespace kvr::orden
