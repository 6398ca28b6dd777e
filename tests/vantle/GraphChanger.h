#pragma once

#include <QString>
#include <QTemporaryDir>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "kestrava/sensors/SoNodeSensor.h"

class SoBaseKit;
class SoFile;
class SoMFNode;
class SoNodeKitListPart;
class SoSFNode;

/// A program that changes its scene at random in every way that changes what stands where. Each step is drawn
/// from a number of its own, so that a failure can be repeated with fewer steps.
class GraphChanger {
 public:
  explicit GraphChanger(unsigned seed);
  ~GraphChanger();
  GraphChanger(GraphChanger const&) = delete;
  GraphChanger& operator=(GraphChanger const&) = delete;

  /// The node above the scene.
  SoSelection* watched() const { return m_watched; }
  /// The scene; null where there is none at the moment.
  SoNode* root() const { return m_root; }

  void step(unsigned number);
  /// What the last step did.
  std::string const& what() const { return m_what; }
  /// The last step was a single change, told by a single notification.
  bool isSingle() const { return m_single; }
  /// The last step put another scene below the watched node.
  bool hasNewRoot() const { return m_newRoot; }
  /// Switches notification off above a change, and touches the node there afterwards.
  void setSilentAbove(bool on) { m_silentAbove = on; }
  /// Nodes that are held elsewhere are changed, too, until the next step.
  void setOutside(std::vector<SoRef<SoNode>> nodes) { m_outside = std::move(nodes); }
  int number(std::size_t end) { return end > 0 ? static_cast<int>(m_random() % end) : 0; }
  /// Each once, from above to below.
  std::vector<SoNode*> nodes() const;
  /// What stands directly below a node.
  static std::vector<SoNode*> below(SoNode const* node);

 private:
  template <class T> T* any();
  SoNode* pick(SoNode* holder);
  SoNode* make();
  bool fits(SoNode* holder, SoNode* child) const;
  double places() const;
  void prune();
  void say(std::string const& text, SoNode const* node = nullptr);

  void change();
  void changeGroup(SoGroup* group);
  void changeKit(SoBaseKit* kit);
  void setPartOf(SoBaseKit* kit, std::string const& name, SoType type);
  void changeList(SoNodeKitListPart* list);
  void changeField(SoNode* node);
  void changeSingle(SoSFNode* field, SoNode* node);
  void changeMultiple(SoMFNode* field, SoNode* node);
  void changeFile(SoFile* file);
  void changeInline(SoWWWInline* external);
  void changeRoot();
  void moveBranch();
  void copyBranch();
  void changeSilently();
  void changeInsideAChange();
  void writeFile(int which);
  static void fetch(SbString const& url, void* changer, SoWWWInline* external);
  static void changeAgain(void* changer, SoSensor* sensor);

  unsigned m_seed;
  std::mt19937 m_random;
  QTemporaryDir m_folder;
  SoRef<SoSelection> m_watched{new SoSelection};
  SoRef<SoNode> m_root;
  std::vector<SoRef<SoNode>> m_pool;    // come and go
  std::vector<SoRef<SoNode>> m_sources; // what fields are connected to; hold only what holds nothing
  std::vector<SoRef<SoNode>> m_outside;
  std::vector<SoRef<SoWWWInline>> m_awaiting;
  SoNodeSensor m_sensor;
  bool m_silentAbove = true;
  bool m_single = true;
  bool m_newRoot = false;
  int m_depth = 0; // of changes inside of changes
  std::string m_what;
};
