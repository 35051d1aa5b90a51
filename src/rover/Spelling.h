#pragma once

#include <QString>

namespace marvento {

// How a locator is spoken: in the ICAO alphabet ("Juliett Oscar") or letter by letter; digits
// are German words either way, which a German voice says clearly.
enum class Spelling { Icao, Letters };

// "JO62RM" as "Juliett Oscar sechs zwei Romeo Mike" (ICAO) or "J O sechs zwei R M". Other
// characters are left out.
QString SpellLocator(const QString& locator, Spelling spelling);

}  // namespace marvento
