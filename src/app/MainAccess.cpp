#include "app/MainAccess.h"

#include "platform/AccessibleTexts.h"

namespace marvento {

void SetMainAccessibleTexts(QWidget* window) {
  const QString locator = QStringLiteral(
      "Maidenhead-Locator mit 4, 6, 8 oder 10 Zeichen, zum Beispiel JO62QM, oder alter "
      "QRA-Locator mit 5 Zeichen. Enter rechnet.");
  const QString longitude = QStringLiteral(
      "Grad, Ost positiv, West negativ; dezimal wie 13,4 oder in Grad, Minuten und Sekunden "
      "wie 13°22'30\". Enter rechnet.");
  const QString latitude = QStringLiteral(
      "Grad, Nord positiv, Süd negativ; dezimal wie 52,5 oder in Grad, Minuten und Sekunden "
      "wie 52°30'0\". Enter rechnet.");
  SetAccessibleTexts(
      window,
      {
          {"frmMain", QStringLiteral("Marvento"),
           QStringLiteral("Entfernung und Richtung zwischen zwei Locatoren oder Koordinaten")},
          {"tbMyLoc", QStringLiteral("Mein Locator"), locator},
          {"tbFremdLoc", QStringLiteral("Fremdlocator"), locator},
          {"tbMyLg", QStringLiteral("östliche Länge, eigene Station"), longitude},
          {"tbMyBr", QStringLiteral("nördliche Breite, eigene Station"), latitude},
          {"tbFremdLg", QStringLiteral("östliche Länge, Gegenstation"), longitude},
          {"tbFremdBr", QStringLiteral("nördliche Breite, Gegenstation"), latitude},
          {"Combo1", QStringLiteral("Erdradius"),
           QStringLiteral("in Kilometern; aus der Liste wählen oder eintippen")},
          {"lblEntfernung", QStringLiteral("Entfernung"),
           QStringLiteral("zur Gegenstation, in Kilometern auf dem Großkreis")},
          {"lblRichtung", QStringLiteral("Richtung"),
           QStringLiteral("zur Gegenstation, in Grad von Nord über Ost")},
          {"lbInfo", QString(), QStringLiteral("Infozeile: Meldungen des GPS-Empfangs")},
          {"lbKurs", QString(), QStringLiteral("Kurszeile: Geschwindigkeit und Kurs über Grund")},
          {"lblPunkte", QString(),
           QStringLiteral("QSO-Punkte nach der IARU-Regel aus den Mittelpunkten der beiden "
                          "6-stelligen Felder")},
          {"lblWgs84", QString(),
           QStringLiteral("Entfernung und Richtung auf dem WGS84-Ellipsoid")},
          {"lbFeldrand", QString(),
           QStringLiteral("Feldrandzeile: nächstes Feld in Fahrtrichtung und sein Abstand")},
          {"tbToolBar", QStringLiteral("Werkzeugleiste"), QString()},
          {"sbStatusBar", QStringLiteral("Statusleiste"),
           QStringLiteral("F4 liest die Statusleiste vor")},
          {"Neu", QStringLiteral("Neu"), QStringLiteral("Felder leeren, Strg+N")},
          {"Rechnen", QStringLiteral("Rechnen"), QStringLiteral("Entfernung und Richtung, Strg+R")},
          {"Rotor", QStringLiteral("Antenne drehen"), QStringLiteral("Strg+D")},
          {"Karte", QStringLiteral("Karte"), QStringLiteral("Karte um die eigene Station, Strg+K")},
          {"Beenden", QStringLiteral("Beenden"), QStringLiteral("Strg+B")},
          {"Grundeinstellungen", QStringLiteral("Grundeinstellungen"), QStringLiteral("Strg+G")},
          {"Info", QStringLiteral("Info"), QStringLiteral("F2")},
          {"Hilfe", QStringLiteral("Hilfe"), QStringLiteral("Handbuch, F1")},
      });
}

}  // namespace marvento
