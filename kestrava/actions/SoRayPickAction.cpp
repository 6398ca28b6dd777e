#include "kestrava/actions/SoRayPickAction.h"

#include <algorithm>

#include "kestrava/nodes/SoCamera.h"
#include "kestrava/render/SoDrawList.h"

SoRayPickAction::SoRayPickAction(SbViewportRegion const& region) : SoStateAction(region) {}
SoRayPickAction::~SoRayPickAction() = default;

void SoRayPickAction::setPoint(SbVec2s pixel) {
  m_pixel = pixel;
  m_hasPixel = true;
  m_fixedLine = false;
}

// A camera is looked through, never changed.
void SoRayPickAction::setCamera(SoCamera const* camera) {
  m_camera = SoRef<SoCamera>(const_cast<SoCamera*>(camera));
}

void SoRayPickAction::setRay(SbVec3f const& start, SbVec3f const& direction) {
  m_line.setPosDir(start, direction);
  m_fixedLine = true;
}

void SoRayPickAction::begin() {
  SoStateAction::begin();
  m_points.clear();
}

SoDrawList const& SoRayPickAction::prepare(SoNode* root) {
  SoDrawList::View view{getViewportRegion(), m_camera, {}};
  if (m_camera) view.volume = m_camera->getViewVolume(getViewportRegion().getViewportAspectRatio());
  if (SoDrawList const* const prepared = SoDrawList::findPrepared(root, view)) {
    if (prepared != m_list.get()) m_list.reset();
    return *prepared;
  }
  if (!m_list) m_list = std::make_unique<SoDrawList>();
  m_list->update(root, view);
  return *m_list;
}

bool SoRayPickAction::findRay(SoDrawList const& list, SoDrawListPicker::Query& query) const {
  if (m_fixedLine) {
    query.ray = m_line;
    query.radius = m_rayRadius;
    return true;
  }
  if (!m_hasPixel) return false;
  float const aspect = getViewportRegion().getViewportAspectRatio();
  std::optional<SbViewVolume> volume;
  if (m_camera) {
    volume = m_camera->getViewVolume(aspect);
  } else {
    volume = list.getCameraVolume(aspect);
  }
  if (!volume) return false;
  query.radius = m_radius;
  query.pixel = SoDrawListPicker::Pixel{*volume, getViewportRegion(), getViewportRegion().normalize(m_pixel)};
  SbVec3f onNear, onFar;
  volume->projectPointToLine(query.pixel->point, onNear, onFar);
  SbVec3f const along = onFar - onNear;
  query.ray.setPosDir(onNear, along);
  query.length = along.length();
  if (m_camera) {
    // Who looks through a camera of its own fits the planes to the scene: what is seen counts, not they.
    bool const perspective = volume->getProjectionType() == SbViewVolume::PERSPECTIVE;
    query.ray.setPosDir(perspective ? volume->getProjectionPoint() : onNear - along * 10, along);
    query.length = std::numeric_limits<float>::infinity();
  }
  return true;
}

void SoRayPickAction::visit(SoNode* root) {
  terminate();
  SoDrawList const& list = prepare(root);
  SoDrawListPicker::Query query;
  if (!findRay(list, query)) return;
  query.all = m_all;
  if (SoPath const* const along = getAppliedPath()) {
    query.wanted = [&list, along](int item) { return list.isBelow(item, *along); };
  }
  for (auto const& hit : list.getPicker().pick(query)) m_points.push_back(makePoint(list, hit));
}

namespace {

void addCorner(SoPickDetail& detail, SoMesh const& mesh, std::uint32_t vertex, float weight) {
  SoPickDetail::Corner& corner = detail.corners[detail.numCorners++];
  corner.vertex = static_cast<int>(vertex);
  corner.point = mesh.positions[vertex];
  corner.weight = weight;
  if (vertex < mesh.coordIndices.size()) corner.coordIndex = mesh.coordIndices[vertex];
}

int entry(std::vector<std::int32_t> const& numbers, int index, int otherwise) {
  return static_cast<size_t>(index) < numbers.size() ? numbers[static_cast<size_t>(index)] : otherwise;
}

SoPickDetail detailOf(SoMesh const& mesh, SoDrawListPicker::Hit const& hit) {
  using Hit = SoDrawListPicker::Hit;
  SoPickDetail detail;
  auto const at = static_cast<size_t>(hit.primitive);
  switch (hit.kind) {
    case Hit::FACE:
      detail.faceIndex = entry(mesh.faces, hit.primitive, -1);
      detail.partIndex = entry(mesh.parts, hit.primitive, detail.faceIndex);
      addCorner(detail, mesh, mesh.triangles[3 * at], 1 - hit.u - hit.v);
      addCorner(detail, mesh, mesh.triangles[3 * at + 1], hit.u);
      addCorner(detail, mesh, mesh.triangles[3 * at + 2], hit.v);
      break;
    case Hit::LINE:
      detail.kind = SoPickDetail::LINE;
      detail.lineIndex = entry(mesh.lineNumbers, hit.primitive, 0);
      detail.partIndex = hit.primitive;
      addCorner(detail, mesh, mesh.lines[2 * at], 1 - hit.u);
      addCorner(detail, mesh, mesh.lines[2 * at + 1], hit.u);
      break;
    case Hit::POINT:
      detail.kind = SoPickDetail::POINT;
      detail.pointIndex = hit.primitive;
      addCorner(detail, mesh, mesh.points[at], 1);
      break;
    case Hit::BOX:
      detail.kind = SoPickDetail::BOX;
      break;
    case Hit::TEXT:
      detail.kind = SoPickDetail::TEXT;
      break;
  }
  return detail;
}

} // namespace

SoPickedPoint SoRayPickAction::makePoint(SoDrawList const& list, SoDrawListPicker::Hit const& hit) const {
  SoDrawList::Item const& item = list.getItems()[static_cast<size_t>(hit.item)];
  SoMesh const& mesh = item.mesh->mesh;
  SoPickedPoint point;
  point.m_point = hit.point;
  point.m_normal = hit.normal;
  point.m_distance = hit.distance;
  point.m_fromBehind = hit.fromBehind;
  point.m_onTop = list.getLooks()[item.look].layer == SoDrawLook::ANNOTATION;
  point.m_detail = detailOf(mesh, hit);
  point.m_path = list.getPath(hit.item);
  SoPickDetail const& detail = point.m_detail;
  auto const mix = [&detail](std::vector<SbVec3f> const& values) {
    SbVec3f sum;
    for (int i = 0; i < detail.numCorners; ++i)
      sum += values[detail.corners[i].vertex] * detail.corners[i].weight;
    return sum;
  };
  if (detail.kind == SoPickDetail::FACE && !mesh.normals.empty()) {
    // Normals go with the transposed inverse.
    SbVec3f smooth = item.matrix.inverse().transpose().multDirMatrix(mix(mesh.normals));
    if (smooth.normalize() > 0) point.m_normal = smooth;
  }
  if (detail.numCorners == 0) return point;
  if (!mesh.texCoords.empty()) point.m_texCoords = mix(mesh.texCoords);
  if (!mesh.materials.empty()) {
    auto const* const nearest =
        std::max_element(detail.corners, detail.corners + detail.numCorners,
                         [](auto const& a, auto const& b) { return a.weight < b.weight; });
    point.m_materialIndex = mesh.materials[static_cast<size_t>(nearest->vertex)];
  }
  return point;
}
