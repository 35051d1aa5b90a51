// marvento-log: the contest log check, correction and ADIF completion for scripts.
#include "contest/AdifComplete.h"
#include "contest/EdiCheck.h"
#include "contest/EdiFix.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

using namespace marvento;

namespace {

// Exit codes: every claim holds / a claim differs / the file could not be read or written,
// or the command line is wrong.
constexpr int kHolds = 0;
constexpr int kDiffers = 1;
constexpr int kFailed = 2;

void print(FILE* to, const QString& text) {
  const QByteArray bytes = text.toLocal8Bit();
  std::fwrite(bytes.constData(), 1, bytes.size(), to);
  std::fputc('\n', to);
}

void printAll(FILE* to, const QStringList& lines) {
  for (const QString& l : lines) print(to, l);
}

const char* const kHelp =
    "Aufruf: marvento-log BEFEHL ...\n"
    "\n"
    "Prüft und korrigiert Contest-Logs im EDI-Format (REG1TEST) nach der IARU-Regel\n"
    "(Entfernung der Mittelpunkte der beiden 6-stelligen Locatorfelder, 111,2 km je Grad,\n"
    "ganze Kilometer abgeschnitten, plus 1) und ergänzt ADIF-Logs um Entfernung und Richtung.\n"
    "\n"
    "Befehle:\n"
    "  check LOG.edi              Zusammenfassung und Abweichungen ausgeben\n"
    "  fix EIN.edi AUS.edi        korrigierte Kopie schreiben (Punkte, CQSOP, CODXC, CWWLs);\n"
    "                             alle anderen Bytes bleiben, das Original wird nicht verändert\n"
    "  adif EIN.adi AUS.adi [--locator JO62QM] [--replace]\n"
    "                             DISTANCE (km, WGS84) und ANT_AZ (Grad) ergänzen, wo sie fehlen;\n"
    "                             --locator: eigener Locator für QSOs ohne MY_GRIDSQUARE;\n"
    "                             --replace: vorhandene Angaben ersetzen\n"
    "  --help                     diese Hilfe\n"
    "\n"
    "Rückgabewert: 0 alle Angaben stimmen (bzw. geschrieben), 1 Abweichungen gefunden,\n"
    "2 Datei nicht lesbar oder nicht schreibbar, falscher Aufruf.\n";

int usage(const QString& why) {
  print(stderr, QStringLiteral("marvento-log: %1").arg(why));
  print(stderr, QStringLiteral("Hilfe: marvento-log --help"));
  return kFailed;
}

int check(const QString& path) {
  const EdiCheck log = CheckEdiFile(path);
  if (!log.ok()) {
    print(stderr, QStringLiteral("marvento-log: %1").arg(log.error));
    return kFailed;
  }
  printAll(stdout, log.report());
  return log.allHold() ? kHolds : kDiffers;
}

int fix(const QString& in, const QString& out) {
  const EdiCheck log = CheckEdiFile(in);
  if (!log.ok()) {
    print(stderr, QStringLiteral("marvento-log: %1").arg(log.error));
    return kFailed;
  }
  if (const QString error = FixEdi(in, out, log); !error.isEmpty()) {
    print(stderr, QStringLiteral("marvento-log: %1").arg(error));
    return kFailed;
  }
  const qint64 changed =
      std::count_if(log.qsos.begin(), log.qsos.end(), [](const EdiQso& q) { return !q.holds(); });
  print(stdout, QStringLiteral("%1 geschrieben: %2 QSOs korrigiert, Punkte %3 (vorher %4).")
                    .arg(out)
                    .arg(changed)
                    .arg(log.pointsTotal)
                    .arg(log.claimedTotal));
  return kHolds;
}

int adif(const QStringList& args) {
  QStringList files;
  AdifOptions options;
  for (qsizetype i = 0; i < args.size(); ++i) {
    if (args[i] == QLatin1String("--replace")) {
      options.replace = true;
    } else if (args[i] == QLatin1String("--locator")) {
      if (++i >= args.size()) return usage(QStringLiteral("--locator braucht einen Locator."));
      options.locator = args[i].trimmed();
    } else if (args[i].startsWith(QLatin1String("--locator="))) {
      options.locator = args[i].mid(10).trimmed();
    } else if (args[i].startsWith(QLatin1String("--"))) {
      return usage(QStringLiteral("unbekannte Option %1").arg(args[i]));
    } else {
      files << args[i];
    }
  }
  if (files.size() != 2) return usage(QStringLiteral("adif braucht EIN.adi und AUS.adi."));
  const AdifResult r = CompleteAdifFile(files[0], files[1], options);
  if (!r.ok()) {
    print(stderr, QStringLiteral("marvento-log: %1").arg(r.error));
    return kFailed;
  }
  printAll(stdout, r.report());
  return kHolds;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  QStringList args = app.arguments().mid(1);
  if (args.isEmpty()) return usage(QStringLiteral("kein Befehl angegeben."));
  if (args.contains(QLatin1String("--help")) || args.contains(QLatin1String("-h"))) {
    std::fputs(kHelp, stdout);
    return kHolds;
  }
  const QString command = args.takeFirst();
  if (command == QLatin1String("check")) {
    if (args.size() != 1) return usage(QStringLiteral("check braucht genau eine Datei."));
    return check(args[0]);
  }
  if (command == QLatin1String("fix")) {
    if (args.size() != 2) return usage(QStringLiteral("fix braucht EIN.edi und AUS.edi."));
    return fix(args[0], args[1]);
  }
  if (command == QLatin1String("adif")) return adif(args);
  return usage(QStringLiteral("unbekannter Befehl %1").arg(command));
}
