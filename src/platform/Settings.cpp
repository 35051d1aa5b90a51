#include "platform/Settings.h"

#include "platform/Numbers.h"
#include "platform/WriteFailure.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStringList>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

namespace marvento {

namespace {

QSettings store() {
  return QSettings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Marvento"),
                   QStringLiteral("Marvento"));
}

QString read(const QString& group, const QString& key, const QString& defaultValue) {
  QSettings settings = store();
  settings.beginGroup(group);
  if (!settings.contains(key)) return defaultValue;
  const QVariant value = settings.value(key);
  // The INI reader turns an unquoted text with commas, edited in by hand, into a list.
  if (value.typeId() == QMetaType::QStringList) return value.toStringList().join(u',');
  return value.toString();
}

void write(const QString& group, const QString& key, const QString& value) {
  QSettings settings = store();
  settings.beginGroup(group);
  settings.setValue(key, value);
}

const QString kSettingsGroup = QStringLiteral("Settings");
const QString kPortsGroup = QStringLiteral("Ports");
const QString kMapGroup = QStringLiteral("Karte");

QString mapSettingName(MapSettingKey key) {
  switch (key) {
    case MapSettingKey::Geometry: return QStringLiteral("Geometrie");
    case MapSettingKey::Zoom: return QStringLiteral("Zoom");
    case MapSettingKey::Layers: return QStringLiteral("Ebenen");
  }
  return {};
}

// QSettings tells only that its write failed. The same write of `size` bytes into a file of
// its own beside the settings file shows why; 0 when that one goes through.
int probeWrite(const QString& folder, qint64 size) {
  QByteArray name = QFile::encodeName(folder) + "/.Marvento.conf.probe.XXXXXX";
  const int fd = ::mkostemp(name.data(), O_CLOEXEC);
  if (fd < 0) return errno;
  int error = 0;
  const QByteArray block(4096, '\n');
  for (qint64 done = 0; done < size && error == 0;) {
    const ssize_t n = ::write(fd, block.constData(),
                              static_cast<size_t>(std::min<qint64>(block.size(), size - done)));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) error = n < 0 ? errno : ENOSPC;
    done += n > 0 ? n : 0;
  }
  if (error == 0 && ::fsync(fd) != 0) error = errno;
  ::close(fd);
  ::unlink(name.constData());
  return error;
}

// A limit on the file size ends the process with SIGXFSZ instead of failing the write; while
// the settings are written, the write fails and the user is told.
class FileSizeSignalIgnored {
 public:
  FileSizeSignalIgnored() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    ::sigemptyset(&ignore.sa_mask);
    ::sigaction(SIGXFSZ, &ignore, &m_previous);
  }
  ~FileSizeSignalIgnored() { ::sigaction(SIGXFSZ, &m_previous, nullptr); }
  FileSizeSignalIgnored(const FileSizeSignalIgnored&) = delete;
  FileSizeSignalIgnored& operator=(const FileSizeSignalIgnored&) = delete;

 private:
  struct sigaction m_previous {};
};

}  // namespace

QString SettingName(SettingKey key) {
  switch (key) {
    case SettingKey::Gps: return QStringLiteral("GPS");
    case SettingKey::GradDezimal: return QStringLiteral("Grad_Dezimal");
    case SettingKey::GpsZeit: return QStringLiteral("GPS-Zeit");
    case SettingKey::GpsInterval: return QStringLiteral("GPS-Interval");
    case SettingKey::BitSek: return QStringLiteral("Bit-Sek");
    case SettingKey::Com: return QStringLiteral("Com");
    case SettingKey::Protokoll: return QStringLiteral("Protokoll");
    case SettingKey::Loc10st: return QStringLiteral("Loc10st");
    case SettingKey::MyHomeLoc: return QStringLiteral("MyHomeLoc");
    case SettingKey::Radius: return QStringLiteral("Radius");
    case SettingKey::MainLeft: return QStringLiteral("MainLeft");
    case SettingKey::MainTop: return QStringLiteral("MainTop");
    case SettingKey::Gpsd: return QStringLiteral("Gpsd");
    case SettingKey::Wsjtx: return QStringLiteral("Wsjtx");
    case SettingKey::Js8Call: return QStringLiteral("Js8Call");
    case SettingKey::Rotor: return QStringLiteral("Rotor");
    case SettingKey::Ansagen: return QStringLiteral("Ansagen");
    case SettingKey::Buchstabieren: return QStringLiteral("Buchstabieren");
    case SettingKey::FeldStufe: return QStringLiteral("FeldStufe");
    case SettingKey::Feldrand: return QStringLiteral("Feldrand");
  }
  return {};
}

QString GetSetting(SettingKey key, const QString& defaultValue) {
  return read(kSettingsGroup, SettingName(key), defaultValue);
}

std::optional<QString> StoredSetting(SettingKey key) {
  // A text no value can hold stands for the missing key.
  const QString missing(1, QChar(0xFFFF));
  QString text = read(kSettingsGroup, SettingName(key), missing);
  if (text == missing) return std::nullopt;
  return text;
}

void SaveSetting(SettingKey key, const QString& value) {
  write(kSettingsGroup, SettingName(key), value);
}

std::optional<QString> SaveSettings(const std::vector<std::pair<SettingKey, QString>>& values) {
  const FileSizeSignalIgnored guard;
  QSettings settings = store();
  // QSettings writes through a file of its own that replaces the old one when it is whole.
  settings.setAtomicSyncRequired(true);
  settings.beginGroup(kSettingsGroup);
  for (const auto& [key, value] : values) settings.setValue(SettingName(key), value);
  settings.endGroup();
  settings.sync();
  if (settings.status() == QSettings::NoError) return std::nullopt;
  const QFileInfo file(settings.fileName());
  if (!file.dir().exists() &&
      ::mkdir(QFile::encodeName(file.absolutePath()).constData(), 0700) != 0) {
    return WriteFailureReason(errno);
  }
  // The new file is about as large as the old one, plus the keys that were missing.
  const int error = probeWrite(file.absolutePath(), file.size() + 4096);
  if (error != 0) return WriteFailureReason(error);
  return settings.status() == QSettings::FormatError
             ? QStringLiteral("Die Datei hat ein unlesbares Format.")
             : QStringLiteral("Die Datei konnte nicht ersetzt werden.");
}

QString SettingsFilePath() {
  return store().fileName();
}

float GetTwipsSetting(SettingKey key) {
  const QString text = GetSetting(key, QStringLiteral("1000")).trimmed();
  if (!IsNumeric(text)) return 1000;
  const double value = Val(ToDotDecimal(text));
  // A position far off any screen is no position a window was closed at.
  return std::fabs(value) <= 1e7 ? static_cast<float>(value) : 1000.0f;
}

QString GetPortDevice(int number) {
  return read(kPortsGroup, QStringLiteral("Com%1").arg(number), {}).trimmed();
}

QString GetMapSetting(MapSettingKey key, const QString& defaultValue) {
  return read(kMapGroup, mapSettingName(key), defaultValue);
}

void SaveMapSetting(MapSettingKey key, const QString& value) {
  write(kMapGroup, mapSettingName(key), value);
}

void SavePortDevice(int number, const QString& path) {
  write(kPortsGroup, QStringLiteral("Com%1").arg(number), path);
}

}  // namespace marvento
