#pragma once

// Descriptive metadata of QuickTime and ISO files: the movie's user data
// ('udta') and metadata ('meta') into the container's bag.
//
// Three layouts carry it:
//   - QuickTime user-data text atoms in 'udta' (©nam, ©ART ...): a list of
//     (16-bit size, 16-bit language, text) records. Language codes below
//     0x400 are Macintosh codes whose text is Mac-Roman; packed ISO 639
//     codes (0x400 and up, 0x7FFF, "no language", among them) carry UTF-8,
//     or UTF-16 when the text starts with a byte-order mark. The first
//     record wins; later records are the same text in other languages.
//   - iTunes item lists ('meta' with handler 'mdir', 'ilst'): each item is
//     a four-character code holding 'data' boxes whose type indicator says
//     how the value is coded. ISO files also put such items directly into
//     'udta', and 3GPP asset atoms ('titl', 'cprt' ...) hold a language and
//     a terminated string after a full-box header.
//   - QuickTime metadata ('meta' with handler 'mdta', 'keys' + 'ilst'): the
//     item types are 1-based indexes into 'keys', whose names (such as
//     "com.apple.quicktime.title") are used as the bag's keys as they are.
//
// Where values go (udta atom and ilst item alike):
//   ©nam -> MovTitle          ©ART -> MovArtist        ©alb -> MovAlbum
//   ©aut -> MovAuthor         ©cmt -> MovComment       ©cpy, cprt -> MovCopyright
//   ©day -> MovCreationDate, and its leading four-digit year also -> MovYear
//   ©des, desc -> MovDescription                       ©dir -> MovDirector
//   ©gen -> MovGenre          ©inf -> MovInformation   ©key, keyw -> MovKeywords
//   ©xyz -> MovLocation (ISO 6709 text)                ©prd -> MovProducer
//   ©pub -> MovPublisher      ©swr, ©too -> MovSoftware
//   covr -> MovArtwork (the picture's bytes)
//   3GPP assets: titl -> MovTitle, auth -> MovAuthor, perf -> MovArtist,
//                dscp -> MovDescription, gnre (a string there) -> MovGenre
// iTunes' numeric 'gnre' (a genre number) is kept as "mov.udta.gnre".
// A QuickTime metadata key that names MovCreationDate sets MovYear the same
// way. Atoms and items with no key of their own are kept under
// UnknownAtomPrefix + their four characters ("mov.udta.©wrt", "mov.udta.aART");
// the characters are the atom's bytes read as Latin-1, printable ones
// kept, others written as %XX. iTunes free-form items ('----') are kept
// under their domain and name joined by a dot ("com.apple.iTunes.iTunSMPB").
//
// Value forms: text is stored as UTF-8 bytes without a terminator (as the
// bag's string accessor reads it); ill-formed UTF-8 is repaired with
// U+FFFD. Whole numbers (type 21/22 and the implicit counters cpil, tmpo,
// gnre ...) are stored as decimal text, 'trkn' and 'disk' as "number" or
// "number/total", floats as decimal text; pictures and values of any other
// type as their bytes.
//
// Nothing here makes a file unreadable: an atom whose lengths do not add up
// is skipped with a log line naming it, and the walk goes on with the next
// one (or stops, logged, when a box header itself is broken). The walk has a
// fixed depth (udta, meta, ilst, item, data) far below MovBoxIterator's
// MaxDepth: nothing nests into itself.
#include <vek/containers/readers/mov/MovBox.h>

namespace Quorvex::Vek {

class IProperties;

// "mov.udta.": keys of atoms and items with no key of their own.
VEK_API extern const char* const MovUnknownAtomPrefix;

// The children of a 'udta' (movie or ISO): text atoms, data-form items,
// 3GPP assets and a 'meta' among them. 0, RESULT_ARGUMENT_NULL for a null
// bag, or RESULT_OUT_OF_MEMORY (the only failure that stops the walk).
VEK_API int ReadUserData(const MovBox& udta, IProperties* container);

// A 'meta' box in either form: the ISO full box or QuickTime's plain
// container (told apart by its first word: a version and flags of zero
// cannot be a child box's size). Handlers 'mdir' and 'mdta' are read;
// others are skipped. Returns as ReadUserData.
VEK_API int ReadMetadata(const MovBox& meta, IProperties* container);

} // namespace Quorvex::Vek
