#pragma once
/// @file
/// Search as you type over a grid's rows: which rows hold a text in a set of columns, without
/// regard to case, the columns of a row taken as one run of text (a match may straddle two
/// cells). The upper-cased text of every row is kept in one buffer built once, so each keystroke
/// is a scan of that buffer and not a conversion of every cell.
#include <kvr/kvr_core_export.h>
#include <kvr/rejilla.h>

#include <string>
#include <string_view>
#include <vector>

namespace kvr {

/// Upper case of UTF-8 text, character by character (one character gives one character, as a
/// field's upper case does), appended to `destino`. A NUL becomes a blank, as a contacts file
/// reads it: the index ends each row's text with a NUL of its own.
KVR_CORE_EXPORT void MayusculasUtf8(std::string_view texto, std::string &destino);
/// The same into a buffer with room for twice the bytes of `texto`; returns the end written.
KVR_CORE_EXPORT char *MayusculasUtf8(std::string_view texto, char *destino);

/// The search index of a grid: the upper-cased text of each row's columns run together, in one
/// buffer, searched for a text in one pass (the phone book's search as you type).
class KVR_CORE_EXPORT IndiceBusqueda {
public:
    /// The text of the rows from `primeraFila` on, columns `columnas` run together.
    void Construir(const Rejilla &grid, const std::vector<int> &columnas, int primeraFila = 1);
    /// Empties the index, giving back its memory.
    void Vaciar();
    /// The number of rows indexed.
    int Filas() const { return int(m_inicios.size()); }
    /// One flag per row of the index (row primeraFila + i): 1 when its text holds `texto`
    /// (upper-cased here), 0 when it does not. An empty text is in every row.
    std::vector<unsigned char> Buscar(const QString &texto) const;
    /// The same, looking only in the rows flagged in `candidatos` (one flag per row of the index):
    /// when the user types one more letter, only the rows that held the shorter text can hold
    /// the longer one. The other rows are 0.
    std::vector<unsigned char> Buscar(const QString &texto, const std::vector<unsigned char> &candidatos) const;
    /// Bytes held.
    std::size_t Bytes() const { return m_texto.capacity() + m_inicios.capacity() * sizeof(uint32_t); }

private:
    std::string m_texto;            ///< rows' texts, each ended by a NUL
    std::vector<uint32_t> m_inicios; ///< where each row's text starts
};

} // namespace kvr
