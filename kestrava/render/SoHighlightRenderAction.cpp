#include "kestrava/render/SoHighlightRenderAction.h"

#include <epoxy/gl.h>

#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <unordered_set>
#include <utility>

#include "kestrava/actions/SoCallbackAction.h"
#include "kestrava/actions/SoGetBoundingBoxAction.h"
#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/render/SoGLProgram.h"
#include "kestrava/render/SoGLState.h"

namespace {

// Beyond this the edges would cover the shapes and take seconds to gather.
constexpr size_t MAX_EDGES = 2'000'000;

// Everything comes some pixels' size towards the eye, so that edges win against the faces they lie on, also where those
// are seen from the side. Where it is on the screen stays.
char const* const VERTEX = R"(#version 330 core
uniform mat4 viewProjection;
uniform vec3 towardsEye;
uniform float perPixel;
uniform bool perspective;
uniform vec2 shift;
uniform float nearer;
in vec3 position;
void main() {
  gl_Position = viewProjection * vec4(position, 1.0);
  float distance = perspective ? gl_Position.w : 1.0;
  float step = nearer * perPixel * distance;
  if (perspective) step = min(step, 0.5 * distance);
  vec4 moved = viewProjection * vec4(position + towardsEye * step, 1.0);
  float depth = moved.z / moved.w * gl_Position.w;
  // What is seen stays in front of the near plane.
  if (gl_Position.w > 0.0) gl_Position.z = gl_Position.z < -gl_Position.w ? gl_Position.z : max(depth, -gl_Position.w);
  gl_Position.xy += shift * gl_Position.w;
}
)";

char const* const FRAGMENT = R"(#version 330 core
uniform vec4 color;
out vec4 result;
void main() { result = color; }
)";

// In pixels' sizes.
constexpr float IN_FRONT = 2, BEHIND = -12;
// Under the mark, for scenes that have its colour.
SbColor const DARK(0.06f, 0.05f, 0.04f);

struct Edge {
  SbVec3f a, b;
  friend bool operator==(Edge const& x, Edge const& y) { return x.a == y.a && x.b == y.b; }
};
struct EdgeHash {
  size_t operator()(Edge const& edge) const {
    size_t hash = 1469598103934665603u;
    std::uint32_t words[6];
    std::memcpy(words, &edge, sizeof words);
    for (std::uint32_t word : words) hash = (hash ^ word) * 1099511628211u;
    return hash;
  }
};

bool isBefore(SbVec3f const& a, SbVec3f const& b) {
  for (int i = 0; i < 3; ++i) {
    if (a[i] != b[i]) return a[i] < b[i];
  }
  return false;
}

struct Gathering {
  std::vector<SbVec3f>* lines;
  std::vector<SbVec3f>* triangles;  // null: edges are wanted
  std::unordered_set<Edge, EdgeHash> edges;

  void addEdge(SbVec3f const& a, SbVec3f const& b) {
    if (edges.size() >= MAX_EDGES) return;
    // An edge stands in two triangles; it is drawn once.
    if (edges.insert(isBefore(a, b) ? Edge{a, b} : Edge{b, a}).second) lines->insert(lines->end(), {a, b});
  }
};

}  // namespace

void SoHighlightRenderAction::gatherPrimitives(SoPath& path, Mark& mark, bool asEdges) {
  Gathering gathering{&mark.lines, asEdges ? nullptr : &mark.triangles, {}};
  SoCallbackAction action(getViewportRegion());
  action.addTriangleCallback(
      SoShape::getClassTypeId(),
      [](void* data, SoCallbackAction* walk, SoPrimitiveVertex const& a, SoPrimitiveVertex const& b,
         SoPrimitiveVertex const& c) {
        auto& g = *static_cast<Gathering*>(data);
        SbMatrix const& matrix = walk->getModelMatrix();
        SbVec3f const corner[] = {matrix.multVecMatrix(a.point), matrix.multVecMatrix(b.point),
                                  matrix.multVecMatrix(c.point)};
        if (g.triangles) {
          g.triangles->insert(g.triangles->end(), corner, corner + 3);
          return;
        }
        for (int i = 0; i < 3; ++i) g.addEdge(corner[i], corner[(i + 1) % 3]);
      },
      &gathering);
  action.addLineSegmentCallback(
      SoShape::getClassTypeId(),
      [](void* data, SoCallbackAction* walk, SoPrimitiveVertex const& a, SoPrimitiveVertex const& b) {
        SbMatrix const& matrix = walk->getModelMatrix();
        static_cast<Gathering*>(data)->addEdge(matrix.multVecMatrix(a.point), matrix.multVecMatrix(b.point));
      },
      &gathering);
  action.apply(&path);
}

void SoHighlightRenderAction::findSelections(SoNode* root) {
  if (m_searchedId == root->getNodeId()) return;
  m_searchedId = root->getNodeId();
  m_selections.clear();
  SoSearchAction search;
  search.setType(SoSelection::getClassTypeId());
  // Where the root is a selection it is the one that counts, and the search ends at once.
  bool const isRoot = root->isOfType(SoSelection::getClassTypeId());
  search.setInterest(isRoot ? SoSearchAction::FIRST : SoSearchAction::ALL);
  search.apply(root);
  for (auto const& found : search.getPaths()) {
    auto& steps = m_selections.emplace_back();
    for (int i = 0; i < found->getLength(); ++i) steps.emplace_back(found->getNode(i), found->getIndex(i));
  }
}

// The selection does not notify, so its paths are compared for every frame; they are few.
void SoHighlightRenderAction::update(SoNode* root) {
  findSelections(root);
  std::vector<SoRef<SoPath>> selected;
  std::vector<Step> shown;
  for (auto const& above : m_selections) {
    auto* const selection = static_cast<SoSelection*>(above.back().first);
    for (int i = 0; i < selection->getNumSelected(); ++i) {
      bool isWhole = false;
      SoRef<SoPath> const below = selection->getPath(i, &isWhole);
      if (!isWhole) continue;
      SoRef<SoPath> const whole(new SoPath(root));
      for (size_t k = 1; k < above.size(); ++k) whole->appendNode(above[k].first, above[k].second);
      for (int k = 1; k < below->getLength(); ++k) whole->appendNode(below->getNode(k), below->getIndex(k));
      for (int k = 0; k < whole->getLength(); ++k) shown.emplace_back(whole->getNode(k), whole->getIndex(k));
      selected.push_back(whole);
    }
  }
  if (m_shownId == root->getNodeId() && m_shown == shown) return;
  m_shownId = root->getNodeId();
  m_shown = std::move(shown);
  m_mark = Mark();
  for (auto const& path : selected) gather(*path, m_mark);
  m_uploaded = false;
}

void SoHighlightRenderAction::visit(SoNode* root) {
  SoGLRenderAction::visit(root);
  mark(root, getViewVolume());
}

void SoHighlightRenderAction::markOver(SoNode* root, SoGLRenderAction const& frame) {
  setViewportRegion(frame.getViewportRegion());
  mark(root, frame.getViewVolume());
}

/// False when there is no program; otherwise everything that was gathered stands ready to be drawn.
bool SoHighlightRenderAction::bindObjects() {
  if (!m_objects.program) {
    m_objects.program = SoGLProgram::build("highlight", VERTEX, FRAGMENT);
    if (!m_objects.program) return false;
    glGenVertexArrays(1, &m_objects.vertexArray);
    glGenBuffers(1, &m_objects.buffer);
    m_uploaded = false;
  }
  glUseProgram(m_objects.program);
  glBindVertexArray(m_objects.vertexArray);
  glBindBuffer(GL_ARRAY_BUFFER, m_objects.buffer);
  if (!m_uploaded) {
    size_t const lines = m_mark.lines.size() * sizeof(SbVec3f), triangles = m_mark.triangles.size() * sizeof(SbVec3f);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(lines + triangles), nullptr, GL_STATIC_DRAW);
    glBufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(lines), m_mark.lines.data());
    glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(lines), static_cast<GLsizeiptr>(triangles),
                    m_mark.triangles.data());
    m_uploaded = true;
  }
  auto const position = static_cast<unsigned>(glGetAttribLocation(m_objects.program, "position"));
  glEnableVertexAttribArray(position);
  glVertexAttribPointer(position, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
  return true;
}

void SoHighlightRenderAction::mark(SoNode* root, SbViewVolume const& volume) {
  if (!m_visible) return;
  update(root);
  if (m_mark.lines.empty() && m_mark.triangles.empty()) return;

  SoGLState const hostState(0);
  hostState.setPlain();
  if (!bindObjects()) return;
  SbMatrix view, projection;
  volume.getMatrices(view, projection);
  SbMatrix const both = view * projection;
  glUniformMatrix4fv(glGetUniformLocation(m_objects.program, "viewProjection"), 1, GL_FALSE, both.getValue());
  bool const perspective = volume.getProjectionType() == SbViewVolume::PERSPECTIVE;
  auto const uniform = [this](char const* name) { return glGetUniformLocation(m_objects.program, name); };
  float const rows = std::max<short>(getViewportRegion().getViewportSizePixels()[1], 1);
  glUniform3fv(uniform("towardsEye"), 1, (volume.getProjectionDirection() * -1).getValue());
  glUniform1f(uniform("perPixel"), volume.getHeight() / rows / (perspective ? volume.getNearDist() : 1));
  glUniform1i(uniform("perspective"), perspective);
  setPaint(m_color);
  setNearer(IN_FRONT);
  m_shift = glGetUniformLocation(m_objects.program, "shift");
  setShift(0, 0);

  SbVec2s const origin = getViewportRegion().getViewportOriginPixels(), size = getViewportRegion().getViewportSizePixels();
  glViewport(origin[0], origin[1], size[0], size[1]);
  glScissor(origin[0], origin[1], size[0], size[1]);
  glEnable(GL_SCISSOR_TEST);
  glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LEQUAL);
  glDepthMask(GL_FALSE);
  glLineWidth(1);
  drawMark();
}

void SoHighlightRenderAction::setNearer(float pixels) {
  glUniform1f(glGetUniformLocation(m_objects.program, "nearer"), pixels);
}

void SoHighlightRenderAction::setPaint(SbColor const& color, float alpha) {
  glUniform4f(glGetUniformLocation(m_objects.program, "color"), color[0], color[1], color[2], alpha);
}

// Pixels into clip coordinates.
void SoHighlightRenderAction::setShift(float x, float y) {
  SbVec2s const size = getViewportRegion().getViewportSizePixels();
  glUniform2f(m_shift, 2 * x / static_cast<float>(std::max<short>(size[0], 1)),
              2 * y / static_cast<float>(std::max<short>(size[1], 1)));
}

// Lines wider than a pixel are no part of the core profile: they are drawn side by side.
void SoHighlightRenderAction::drawLines(float width, float x, float y) {
  int const steps = std::max(1, static_cast<int>(std::lround(width)));
  for (int i = 0; i < steps; ++i) {
    float const offset = static_cast<float>(i) - static_cast<float>(steps - 1) / 2;
    for (bool const upwards : {false, true}) {
      if (upwards && offset == 0) continue;
      setShift(x + (upwards ? 0 : offset), y + (upwards ? offset : 0));
      glDrawArrays(GL_LINES, 0, static_cast<GLsizei>(m_mark.lines.size()));
    }
  }
  setShift(0, 0);
}

void SoHighlightRenderAction::drawTriangles() {
  glDrawArrays(GL_TRIANGLES, static_cast<GLint>(m_mark.lines.size()), static_cast<GLsizei>(m_mark.triangles.size()));
}

void SoHighlightRenderAction::drawTrianglesAround(float pixels) {
  constexpr int DIRECTIONS = 12;
  for (int i = 0; i < DIRECTIONS; ++i) {
    float const angle = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / DIRECTIONS;
    setShift(pixels * std::cos(angle), pixels * std::sin(angle));
    drawTriangles();
  }
  setShift(0, 0);
}

void SoHighlightRenderAction::releaseGL() {
  SoGLRenderAction::releaseGL();
  takeObjects().release();
}

SoHighlightRenderAction::Objects SoHighlightRenderAction::takeObjects() { return std::exchange(m_objects, {}); }

void SoHighlightRenderAction::Objects::release() {
  if (!program) return;
  glDeleteProgram(program);
  glDeleteVertexArrays(1, &vertexArray);
  glDeleteBuffers(1, &buffer);
  *this = Objects();
}

// The shadow lets something of the shape show between edges that lie close together.
void SoLineHighlightRenderAction::drawMark() {
  glEnable(GL_BLEND);
  glBlendEquation(GL_FUNC_ADD);
  glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ZERO, GL_ONE);
  setPaint(DARK, 0.5f);
  drawLines(getLineWidth(), 1, -1);
  glDisable(GL_BLEND);
  setPaint(getColor());
  drawLines(getLineWidth());
}

void SoBoxHighlightRenderAction::gather(SoPath& path, Mark& mark) {
  // Around what is there, not around boxes of boxes: these grow with every turn on the way.
  SbBox3f box;
  SoCallbackAction action(getViewportRegion());
  auto const extend = [](void* data, SoCallbackAction* walk, auto const&... corners) {
    (static_cast<SbBox3f*>(data)->extendBy(walk->getModelMatrix().multVecMatrix(corners.point)), ...);
  };
  action.addTriangleCallback(SoShape::getClassTypeId(), extend, &box);
  action.addLineSegmentCallback(SoShape::getClassTypeId(), extend, &box);
  action.addPointCallback(SoShape::getClassTypeId(), extend, &box);
  action.apply(&path);
  if (box.isEmpty()) {  // texts in the plane of the screen have no primitives
    SoGetBoundingBoxAction bounds(getViewportRegion());
    bounds.apply(&path);
    box = bounds.getBoundingBox();
  }
  if (box.isEmpty()) return;
  auto const corner = [&box](int i) {
    return SbVec3f(i & 1 ? box.getMax()[0] : box.getMin()[0], i & 2 ? box.getMax()[1] : box.getMin()[1],
                   i & 4 ? box.getMax()[2] : box.getMin()[2]);
  };
  for (int i = 0; i < 8; ++i) {
    for (int bit : {1, 2, 4}) {
      if (!(i & bit)) mark.lines.insert(mark.lines.end(), {corner(i), corner(i | bit)});
    }
  }
}

void SoBoxHighlightRenderAction::drawMark() {
  setPaint(DARK);
  drawLines(getLineWidth() + 2);
  setPaint(getColor());
  drawLines(getLineWidth());
}

namespace {

/// The part of OpenGL's state that only a halo changes.
class StencilState {
 public:
  StencilState() {
    glGetIntegerv(GL_STENCIL_CLEAR_VALUE, &m_clearValue);
    for (int side : {0, 1}) {
      for (size_t i = 0; i < NAMES[side].size(); ++i) glGetIntegerv(NAMES[side][i], &m_values[side][i]);
    }
  }
  ~StencilState() {
    glClearStencil(m_clearValue);
    for (int side : {0, 1}) {
      unsigned const face = side == 0 ? GL_FRONT : GL_BACK;
      auto const value = [this, side](size_t i) { return static_cast<unsigned>(m_values[side][i]); };
      glStencilFuncSeparate(face, value(0), m_values[side][1], value(2));
      glStencilMaskSeparate(face, value(3));
      glStencilOpSeparate(face, value(4), value(5), value(6));
    }
  }
  StencilState(StencilState const&) = delete;
  StencilState& operator=(StencilState const&) = delete;

 private:
  static constexpr std::array<std::array<unsigned, 7>, 2> NAMES{
      {{GL_STENCIL_FUNC, GL_STENCIL_REF, GL_STENCIL_VALUE_MASK, GL_STENCIL_WRITEMASK, GL_STENCIL_FAIL,
        GL_STENCIL_PASS_DEPTH_FAIL, GL_STENCIL_PASS_DEPTH_PASS},
       {GL_STENCIL_BACK_FUNC, GL_STENCIL_BACK_REF, GL_STENCIL_BACK_VALUE_MASK, GL_STENCIL_BACK_WRITEMASK,
        GL_STENCIL_BACK_FAIL, GL_STENCIL_BACK_PASS_DEPTH_FAIL, GL_STENCIL_BACK_PASS_DEPTH_PASS}}};
  std::array<std::array<int, 7>, 2> m_values{};
  int m_clearValue = 0;
};

bool hasStencilBuffer() {
  int framebuffer = 0, type = GL_NONE, bits = 0;
  glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
  unsigned const buffer = framebuffer ? GL_STENCIL_ATTACHMENT : GL_STENCIL;
  glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, buffer, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE, &type);
  if (type == GL_NONE) return false;
  glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, buffer, GL_FRAMEBUFFER_ATTACHMENT_STENCIL_SIZE, &bits);
  return bits > 0;
}

}  // namespace

// The shape's own pixels are marked in the stencil buffer; then it is drawn a few pixels off in every direction
// wherever there is no mark.
void SoHaloHighlightRenderAction::drawMark() {
  if (!hasStencilBuffer()) {
    // A host's window without one: the rim is pushed behind the shape, and can not show through what hides it.
    setNearer(BEHIND);
    drawRim();
    return;
  }
  StencilState const hostState;
  if (m_alwaysVisible) glDisable(GL_DEPTH_TEST);
  glEnable(GL_STENCIL_TEST);
  glStencilMask(0xff);
  glClearStencil(0);
  glClear(GL_STENCIL_BUFFER_BIT);
  glStencilFunc(GL_ALWAYS, 1, 0xff);
  glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
  glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
  drawTriangles();
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glStencilFunc(GL_EQUAL, 0, 0xff);
  glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
  drawRim();
}

void SoHaloHighlightRenderAction::drawRim() {
  setPaint(DARK);
  drawTrianglesAround(getLineWidth() + 1);
  setPaint(getColor());
  drawTrianglesAround(getLineWidth());
}
