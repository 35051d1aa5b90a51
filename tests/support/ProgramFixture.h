#pragma once

#include "app/Module1.h"
#include "app/frmMain.h"

#include <QTemporaryDir>

#include <optional>

namespace marvento::test {

// A private settings store and runtime folder for one test; restores the environment.
class IsolatedUser {
 public:
  IsolatedUser();
  ~IsolatedUser();
  IsolatedUser(const IsolatedUser&) = delete;
  IsolatedUser& operator=(const IsolatedUser&) = delete;

  QString configFile() const;
  // A stored key as the file holds it, or nothing when it is missing.
  std::optional<QString> stored(const QString& key) const;
  QString path() const { return m_dir.path(); }

 private:
  QTemporaryDir m_dir;
  QByteArray m_config;
  QByteArray m_runtime;
};

// Runs Main() on a fresh state record and removes the window again at the end, without
// the closing question.
class Program {
 public:
  Program();
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  frmMain* window() const { return m_window; }
  Module1& state() const { return State(); }

 private:
  frmMain* m_window = nullptr;
};

}  // namespace marvento::test
