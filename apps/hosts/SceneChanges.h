#pragma once

#include <deque>
#include <string>

#include "kestrava/kits/SoShapeKit.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoSeparator.h"

/// What the sample hosts do to their scenes while somebody looks at them: each change has a key. All of it
/// happens in a group of its own at the end of the scene, so the picture keeps its cameras and lights.
class SceneChanges {
 public:
  struct Key {
    char letter;
    char const* what; ///< for a menu
  };
  static constexpr Key KEYS[] = {
      {'a', "Add something"},         {'r', "Remove something"},  {'s', "Share: show something again"},
      {'p', "Replace a shape"},       {'l', "Load a file again"}, {'k', "Change a part of a kit"},
      {'m', "Many changes, for 3 s"},
  };

  /// `sample`: a part of the scene that can be shown again somewhere else. Things are put around the middle,
  /// `radius` away from it and as high as that.
  SceneChanges(SoGroup* root, SoNode* sample, float radius, float height);

  /// Does what a key stands for and answers what was done; nothing for other keys.
  std::string press(char letter);
  /// To be called once a turn. While "many changes" runs it makes as many as fall to the time since it was
  /// called last; once it ends it answers how many they were.
  std::string turn(double seconds);
  bool isChangingMuch() const { return m_until > 0; }

 private:
  SoSeparator* extras();
  SoRef<SoSeparator> newPlace(SoNode* content);
  std::string add();
  std::string remove();
  std::string share();
  std::string replace();
  std::string reload();
  std::string changeKit();
  std::string startMany();
  std::string endMany(double seconds);
  void changeOnce();

  SoRef<SoGroup> m_root;
  SoRef<SoNode> m_sample;
  float m_radius, m_height;
  SoRef<SoSeparator> m_extras;             // null until something was changed
  std::deque<SoRef<SoSeparator>> m_places; // in the extras, the oldest first
  SoRef<SoSeparator> m_newest;             // what was added last
  SoRef<SoFile> m_file;
  SoRef<SoShapeKit> m_kit;
  SoRef<SoGroup> m_crowd;
  int m_made = 0, m_turned = 0, m_loads = 0, m_parts = 0;
  double m_now = 0, m_started = 0, m_until = 0; // seconds
  long m_manyDone = 0;
};
