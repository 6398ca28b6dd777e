#pragma once

#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/fields/SoRunTimeFields.h"

/// Declares an engine class; stands first in it.
#define SO_ENGINE(Class, Parent) SO_CONTAINER(Class, Parent)
#define SO_ABSTRACT_ENGINE(Class, Parent) SO_ABSTRACT_CONTAINER(Class, Parent)

/// Computes values from values. Its inputs are ordinary fields; its outputs are fields of the kind EVENT_OUT,
/// which other fields are connected from and nobody sets.
///
/// Engines are lazy: a changed input marks the outputs and what follows them; the values are computed when
/// somebody reads one. An engine lives as long as something is connected from it, or somebody holds a
/// reference.
class SoEngine : public SoFieldContainer {
  SO_ABSTRACT_ENGINE(SoEngine, SoFieldContainer)

  SoFieldData const* getFieldData() const override {
    SoFieldData const* const own = m_runTimeFields.getTable();
    return own ? own : &getClassFieldData();
  }

  /// A new engine, count 0, with the same inputs and in the same state, connected from the same sources;
  /// engines that lead to nothing but this one are copied with it.
  SoEngine* copy() const;

  /// A new engine of a type, count 0; null when the type is abstract or not one of engines.
  static SoEngine* create(SoType type);

 protected:
  enum Manner {
    LAZY,  ///< computes when an output is read
    EVENTS ///< hears of every change of an input at once, and says which outputs that concerns
  };
  explicit SoEngine(Manner manner = LAZY) : m_manner(manner) { serveConnections(); }
  ~SoEngine() override = default;

  /// Sets the outputs from the inputs; nobody hears of that. Inputs are up to date.
  virtual void evaluate() = 0;
  /// An input has changed, null: something below a node that an input refers to. Everything that follows from
  /// that change elsewhere is marked, and nobody has been told yet. What is overridden here calls send().
  virtual void inputChanged(SoField*) { sendAll(); }
  /// An output has a new value, which the next evaluate() sets.
  void send(SoField& output);
  void sendAll();

  /// Fields of this object alone; see SoRunTimeFields.
  SoField* declareField(SoType type, SbName const& name, SoField::FieldType kind);
  SoRunTimeFields m_runTimeFields;

  void changed(SoNotification const& notification) override;

 private:
  friend class SoFieldWalk;
  void inputReached(SoField* field, SoFieldWalk& walk) override;
  void addInputsOf(SoField const* field, std::vector<SoField*>& inputs) const override;
  void computeField(SoField* output) override;
  std::vector<SoField*> getOutputs() const;

  Manner m_manner;
  bool m_telling = false;
};
