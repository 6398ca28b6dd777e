#pragma once

#include <cstdint>
#include <deque>
#include <vector>

class SoEngine;
class SoField;

/// What follows from one change of a field: the fields that follow it, the outputs of engines that follow
/// these, and so on, each once. All are marked before anybody is told. A field that dies while others are
/// told leaves the list.
class SoFieldWalk {
 public:
  SoFieldWalk();
  ~SoFieldWalk();
  SoFieldWalk(SoFieldWalk const&) = delete;
  SoFieldWalk& operator=(SoFieldWalk const&) = delete;

  /// Enters a field, unless this walk has met it.
  void reach(SoField* field);
  /// Marks what follows from the fields entered.
  void follow();
  /// Lets an engine know of a changed input once everything that follows so far is marked.
  void callLater(SoEngine* engine, SoField* input) { m_calls.push_back({engine, input}); }
  /// Tells the sensors and the container of each field.
  void tell();
  /// Tells the sensors alone.
  void tellSensors();

  /// The walk of this thread that is marking, null when none is.
  static SoFieldWalk* getFollowing();
  /// Takes a field that dies off all lists of this thread.
  static void fieldDies(SoField* field);

 private:
  struct Call {
    SoEngine* engine;
    SoField* input;
  };
  void tellSensorsOf(std::size_t entry);

  std::uint32_t m_number;
  std::vector<SoField*> m_entries; // null: gone
  std::size_t m_next = 0;          // first entry whose followers are not marked
  std::deque<Call> m_calls;
  SoFieldWalk* m_outer;
};
