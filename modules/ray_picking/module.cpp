// Picking of large meshes with Embree: what the toolkit does by itself, with a structure that all processors
// build.

#include <embree3/rtcore.h>

#include <memory>

#include "kestrava/base/SoError.h"
#include "kestrava/render/SoMeshIntersector.h"

namespace {

/// Below this number of triangles the toolkit's own structure is made sooner than Embree has looked at them.
constexpr int MIN_TRIANGLES = 2000;

template <auto release> struct Releaser {
  template <class T> void operator()(T* object) const { release(object); }
};
using Scene = std::unique_ptr<RTCSceneTy, Releaser<rtcReleaseScene>>;
using Geometry = std::unique_ptr<RTCGeometryTy, Releaser<rtcReleaseGeometry>>;

void postError(void*, RTCError, char const* text) { SoDebugError::post("ray_picking", "%s", text); }

/// The one device, as long as the module is in use or something was made with it.
std::shared_ptr<RTCDeviceTy> device;

class EmbreeIntersector : public SoMeshIntersector {
 public:
  EmbreeIntersector(SoMesh const& mesh, std::shared_ptr<RTCDeviceTy> made)
      : m_mesh(mesh), m_device(std::move(made)), m_scene(rtcNewScene(m_device.get())) {
    Geometry const geometry(rtcNewGeometry(m_device.get(), RTC_GEOMETRY_TYPE_TRIANGLE));
    // Embree reads a little beyond the last vertex, so it gets vertices of its own.
    void* const vertices = rtcSetNewGeometryBuffer(geometry.get(), RTC_BUFFER_TYPE_VERTEX, 0,
                                                   RTC_FORMAT_FLOAT3, sizeof(SbVec3f), mesh.positions.size());
    if (!vertices || !m_scene) return;
    std::memcpy(vertices, mesh.positions.data(), mesh.positions.size() * sizeof(SbVec3f));
    rtcSetSharedGeometryBuffer(geometry.get(), RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                               mesh.triangles.data(), 0, 3 * sizeof(std::uint32_t),
                               static_cast<size_t>(mesh.getNumTriangles()));
    rtcCommitGeometry(geometry.get());
    rtcAttachGeometry(m_scene.get(), geometry.get());
    rtcSetSceneFlags(m_scene.get(), static_cast<RTCSceneFlags>(RTC_SCENE_FLAG_ROBUST |
                                                               RTC_SCENE_FLAG_CONTEXT_FILTER_FUNCTION));
    rtcCommitScene(m_scene.get());
    m_isUsable = rtcGetDeviceError(m_device.get()) == RTC_ERROR_NONE;
  }
  bool isUsable() const { return m_isUsable; }

  void intersect(Ray const& ray, Take const& take) const override {
    Query query{{}, &m_mesh, &ray, &take};
    rtcInitIntersectContext(&query.context);
    query.context.filter = filter;
    RTCRayHit hit{};
    hit.ray.org_x = ray.origin[0], hit.ray.org_y = ray.origin[1], hit.ray.org_z = ray.origin[2];
    hit.ray.dir_x = ray.direction[0], hit.ray.dir_y = ray.direction[1], hit.ray.dir_z = ray.direction[2];
    hit.ray.tfar = ray.to;
    hit.ray.mask = ~0u;
    hit.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(m_scene.get(), &query.context, &hit);
  }

 private:
  struct Query {
    RTCIntersectContext context; // first: Embree hands its address on
    SoMesh const* mesh;
    Ray const* ray;
    Take const* take;
  };
  /// Called for every hit; one that is refused does not shorten the ray.
  static void filter(RTCFilterFunctionNArguments const* args) {
    auto const& query = *reinterpret_cast<Query const*>(args->context);
    Hit hit{RTCHitN_primID(args->hit, 1, 0), RTCRayN_tfar(args->ray, 1, 0), RTCHitN_u(args->hit, 1, 0),
            RTCHitN_v(args->hit, 1, 0)};
    // More exact where both see a hit; on an edge Embree may see one alone.
    meet(*query.mesh, *query.ray, hit);
    args->valid[0] = hit.distance >= 0 && (*query.take)(hit) ? -1 : 0;
  }

  SoMesh const& m_mesh;
  std::shared_ptr<RTCDeviceTy> m_device;
  Scene m_scene;
  bool m_isUsable = false;
};

std::unique_ptr<SoMeshIntersector> make(SoMesh const& mesh) {
  if (!device || mesh.getNumTriangles() < MIN_TRIANGLES) return nullptr;
  auto made = std::make_unique<EmbreeIntersector>(mesh, device);
  if (made->isUsable()) return made;
  return nullptr;
}

} // namespace

extern "C" void qor_ray_picking_init() {
  device.reset(rtcNewDevice(nullptr), rtcReleaseDevice);
  if (!device) {
    SoDebugError::post("ray_picking", "Embree has no device on this machine");
    return;
  }
  rtcSetDeviceErrorFunction(device.get(), postError, nullptr);
  SoMeshIntersector::setFactory(make);
}

extern "C" void qor_ray_picking_finish() {
  SoMeshIntersector::setFactory(nullptr);
  device.reset();
}
