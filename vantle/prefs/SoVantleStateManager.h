#pragma once

#include <QMultiHash>
#include <QString>

class SoVantleState;
struct SoStateWrapper;

/// Decides which panel owns the shared actions: the one that had the focus last.
class SoVantleStateManager {
 public:
  SoVantleStateManager() = delete;

  /// No state is registered or current. What was registered is forgotten, not destroyed.
  static void init();
  static void finish();
  /// A name may be registered again; the newest counts.
  static void stateRegister(QString const& name, SoVantleState* state);
  /// A state that is about to be destroyed.
  static void stateUnregister(SoVantleState* state);
  /// Faults are told on standard output.
  static void setCurrentState(QString const& name);
  /// Empty when there is none.
  static QString const& currentStateId() { return m_currentStateId; }

 private:
  static SoStateWrapper* find(QString const& name);

  static QMultiHash<QString, SoStateWrapper*> m_states;
  static QString m_currentStateId;
};
