#pragma once

#include <QString>

namespace marvento {

// How a locator is spoken: in the ICAO alphabet ("Juliett Oscar") or letter by letter; digits
// are German words either way, which a German voice says clearly.
enum class Spelling { Icao, Letters };

// "JO62RM" as "Juliett Oscar sechs zwei Romeo Mike" (ICAO) or "J O sechs zwei R M". Other
// characters are left out.
QString SpellLocator(const QString& locator, Spelling spelling);

// The text as a German voice should get it: the ICAO words that it would read as German words
// ("Mike" as "Micke") are written the way they are said on the air ("Maik").
QString ForGermanVoice(const QString& text);

}  // namespace marvento
