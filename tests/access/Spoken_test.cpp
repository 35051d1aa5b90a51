#include "access/Spoken.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

TEST(Spoken, ResultSpellsOutTheUnits) {
  struct Case {
    const char* distance;
    const char* bearing;
    const char* said;
  };
  const Case cases[] = {
      {"541,3 km", "69,74 °", "Entfernung 541,3 Kilometer, Richtung 69,74 Grad"},
      {" > 20000 km ", "-", "Entfernung > 20000 Kilometer, Richtung -"},
      {"0 km", "0°", "Entfernung 0 Kilometer, Richtung 0 Grad"},
      {"", "", ""},
      {"  ", " ", ""},
      // "km" inside a word is no unit.
      {"5 kmh", "", "Entfernung 5 kmh"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(SpokenResult(QString::fromUtf8(c.distance), QString::fromUtf8(c.bearing)),
              QString::fromUtf8(c.said))
        << c.distance << " | " << c.bearing;
  }
}

TEST(Spoken, PanelsThatStartWithANumberTakeTheirDescription) {
  struct Case {
    const char* text;
    const char* description;
    const char* said;
  };
  const Case cases[] = {
      {"12:34:56", "letzte GPS-Daten (UTC)", "letzte GPS-Daten (UTC) 12:34:56"},
      {"25.11.2026", "Datum", "Datum 25.11.2026"},
      {"25 Nov 2026", "Datum", "Datum 25 Nov 2026"},
      {"Status: GPS aus (Com1)", "Grundeinstellungen", "Status: GPS aus (Com1)"},
      {"Rotor 359°", "Richtung des Rotors", "Rotor 359 Grad"},
      {"", "Datum", ""},
      {"12:00", "", "12:00"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(SpokenPanel(QString::fromUtf8(c.text), QString::fromUtf8(c.description)),
              QString::fromUtf8(c.said))
        << c.text;
  }
}

TEST(Spoken, SequenceEndsEachPartAndSkipsEmptyOnes) {
  EXPECT_EQ(
      SpokenSequence({"Status: GPS aus (Com1)", "", "  ", "Datum 25.11.2026", "Kein GPS aktiv!"}),
      "Status: GPS aus (Com1). Datum 25.11.2026. Kein GPS aktiv!");
  EXPECT_EQ(SpokenSequence({}), "");
}

}  // namespace
}  // namespace marvento
