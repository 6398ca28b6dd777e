// What a frame costs: CPU time of the thread that draws, without the draw calls themselves, and whole frames
// with software rendering.

#include <epoxy/gl.h>
#include <time.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "kestrava/nodes/SoCoordinate3.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoNormal.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/render/SoGLRenderAction.h"
#include "kestrava/render/SoHeadlessContext.h"

namespace {

/// A box of 24 vertices with normals.
SoRef<SoNode> makeBox(int i) {
  SoRef<SoSeparator> const box(new SoSeparator);
  auto* const points = new SoCoordinate3;
  auto* const normals = new SoNormal;
  auto* const faces = new SoIndexedFaceSet;
  std::vector<SbVec3f> p, n;
  std::vector<std::int32_t> index;
  float const half = 0.3f + 1e-7f * static_cast<float>(i);
  for (int side = 0; side < 6; ++side) {
    int const axis = side / 2, u = (axis + 1) % 3, v = (axis + 2) % 3;
    float const sign = side % 2 ? 1.0f : -1.0f;
    for (int corner = 0; corner < 4; ++corner) {
      SbVec3f point, normal;
      normal[axis] = sign;
      point[axis] = sign * half;
      point[u] = (corner == 1 || corner == 2 ? half : -half) * sign;
      point[v] = corner >= 2 ? half : -half;
      index.push_back(static_cast<std::int32_t>(p.size()));
      p.push_back(point);
      n.push_back(normal);
    }
    index.push_back(-1);
  }
  points->point.setValues(p);
  normals->vector.setValues(n);
  faces->coordIndex.setValues(index);
  for (SoNode* node : {static_cast<SoNode*>(points), static_cast<SoNode*>(normals), static_cast<SoNode*>(faces)}) {
    box->addChild(node);
  }
  return SoRef<SoNode>(box.get());
}

struct Tree {
  SoRef<SoSeparator> root{new SoSeparator};
  SoTransform* last = nullptr;  // of the last leaf
};

/// Groups of ten down to a level, and leaves spread over the lowest one, each a transform and a box.
Tree makeTree(int depth, int numLeaves, bool shared) {
  Tree tree;
  std::vector<SoSeparator*> level{tree.root};
  for (int d = 0; d < depth; ++d) {
    std::vector<SoSeparator*> next;
    for (SoSeparator* group : level) {
      for (int i = 0; i < 10; ++i) {
        next.push_back(new SoSeparator);
        group->addChild(next.back());
      }
    }
    level = std::move(next);
  }
  SoRef<SoNode> const box = makeBox(0);
  for (int i = 0; i < numLeaves; ++i) {
    auto* const leaf = new SoSeparator;
    tree.last = new SoTransform;
    tree.last->translation = SbVec3f(static_cast<float>(i % 211), static_cast<float>(i / 211 % 211), 0);
    leaf->addChild(tree.last);
    leaf->addChild(shared ? box : makeBox(i));
    level[static_cast<size_t>(i) * level.size() / static_cast<size_t>(numLeaves)]->addChild(leaf);
  }
  return tree;
}

/// A context with a framebuffer of 1280 x 1024 pixels, current for as long as it lives, and an action that draws
/// into it.
class Stage {
 public:
  explicit Stage(SoNode* scene) : m_context(SoHeadlessContext::make()), m_current(*m_context), root(scene) {
    unsigned names[2], framebuffer;
    glGenRenderbuffers(2, names);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    std::pair<unsigned, unsigned> const parts[] = {{GL_RGBA8, GL_COLOR_ATTACHMENT0},
                                                   {GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT}};
    for (int i = 0; i < 2; ++i) {
      glBindRenderbuffer(GL_RENDERBUFFER, names[i]);
      glRenderbufferStorage(GL_RENDERBUFFER, parts[i].first, 1280, 1024);
      glFramebufferRenderbuffer(GL_FRAMEBUFFER, parts[i].second, GL_RENDERBUFFER, names[i]);
    }
    action.setViewportRegion(SbViewportRegion(1280, 1024));
    SoRef<SoPerspectiveCamera> const camera(new SoPerspectiveCamera);
    action.prepare(root);
    camera->viewAll(action.getDrawList().getBounds(), 1280.0f / 1024);
    action.setCamera(camera);
    action.setFitDepth(true);
    frame();
  }
  ~Stage() { action.releaseGL(); }

  void frame() {
    action.apply(root);
    glFinish();
  }
  /// Milliseconds of this thread for some work, the least of several runs; what the driver has queued is done before.
  template <class Work>
  static double cpuMilliseconds(Work const& work, int runs = 30) {
    double best = 1e30;
    for (int i = 0; i < runs; ++i) {
      glFinish();
      timespec from, to;
      clock_gettime(CLOCK_THREAD_CPUTIME_ID, &from);
      work();
      clock_gettime(CLOCK_THREAD_CPUTIME_ID, &to);
      best = std::min(best, (to.tv_sec - from.tv_sec) * 1e3 + (to.tv_nsec - from.tv_nsec) * 1e-6);
    }
    return best;
  }
  /// What it takes to clear and to call the driver as often as a frame does, with one triangle each.
  double bareCalls() {
    unsigned buffers[2], array;
    unsigned const indices[] = {0, 1, 2};
    float const corners[9] = {};
    glGenVertexArrays(1, &array);
    glBindVertexArray(array);
    glGenBuffers(2, buffers);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
    unsigned const program = SoGLProgram::build(
        "floor", "#version 330 core\nlayout(location = 0) in vec3 p;\nvoid main() { gl_Position = vec4(p, 1.0); }",
        "#version 330 core\nout vec4 c;\nvoid main() { c = vec4(1.0); }");
    glUseProgram(program);
    int const calls = action.getRenderer().getStatistics().drawCalls;
    double const result = cpuMilliseconds([&] {
      glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
      for (int i = 0; i < calls; ++i) glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_INT, nullptr);
      glFlush();
    });
    glUseProgram(0);
    glBindVertexArray(0);
    return result;
  }

 private:
  std::unique_ptr<SoHeadlessContext> m_context;
  SoHeadlessContext::Current m_current;

 public:
  SoNode* root;
  SoGLRenderAction action;
};

void measure(char const* name, Tree const& tree) {
  Stage stage(tree.root);
  double const floor = stage.bareCalls();
  stage.action.getRenderer().setDrawing(false);
  double const still = Stage::cpuMilliseconds([&] { stage.action.apply(stage.root); });
  float x = 0;
  auto change = [&] {
    tree.last->translation = SbVec3f(x += 0.001f, 0, 0);
    stage.action.apply(stage.root);
  };
  double const changed = Stage::cpuMilliseconds(change, 10);
  stage.action.getRenderer().setDrawing(true);
  double const whole = bench::fastest([&] { stage.frame(); }, 10) * 1e3;
  std::string const prefix = name;
  bench::report({prefix + "_still_cpu", still, "ms", floor});
  bench::report({prefix + "_changed_cpu", changed, "ms", floor});
  bench::report({prefix + "_whole", whole, "ms", 0});
}

}  // namespace

// 1 + 10 + 100 groups and 178 leaves of five nodes are 1,001 nodes; the large ones have 44,445 leaves below 11,111 groups.
BENCH(frame_1k) { measure("frame_1k", makeTree(2, 178, false)); }
BENCH(frame_100k) { measure("frame_100k", makeTree(4, 44445, false)); }
BENCH(frame_100k_shared) { measure("frame_100k_shared", makeTree(4, 44445, true)); }
