#include "apps/host_qt/HostScene.h"

#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"

namespace {

// Engines turn the arms: all follow the one watch.
constexpr char ORRERY[] = R"scene(
DEF orrery Separator {
  GradientBackground { color0 0.05 0.06 0.12 color1 0.22 0.26 0.38 }
  DEF camera PerspectiveCamera {
    position 0 7.4 12.4 orientation 1 0 0 -0.54 nearDistance 1 farDistance 40 focalDistance 14.4 heightAngle 0.54
  }
  DEF window DirectionalLight { direction -0.5 -0.8 -0.6 intensity 0.75 }
  DEF lamp DirectionalLight { direction 0.8 -0.3 -0.2 intensity 0.35 color 0.75 0.85 1 }
  DEF sunlight PointLight { location 0 1.5 0 intensity 0.55 color 1 0.85 0.6 }
  Complexity { value 0.8 }

  DEF stand Separator {
    DEF wood Material { diffuseColor 0.36 0.19 0.1 specularColor 0.35 0.3 0.25 shininess 0.5 }
    Translation { translation 0 -1.9 0 }
    Cylinder { radius 2.2 height 0.3 }
    Translation { translation 0 0.25 0 }
    Cylinder { radius 1.8 height 0.2 }
    DEF brass Material { diffuseColor 0.72 0.52 0.2 specularColor 0.9 0.8 0.5 shininess 0.6 }
    Translation { translation 0 0.15 0 }
    Cylinder { radius 0.5 height 0.12 }
    Translation { translation 0 1.3 0 }
    Cylinder { radius 0.12 height 2.6 }
  }

  DEF sun Separator {
    Translation { translation 0 1.5 0 }
    Material { diffuseColor 0.9 0.55 0.1 emissiveColor 0.75 0.45 0.1 specularColor 0 0 0 }
    Sphere {
      radius = Calculator {
        a = DEF watch ElapsedTime { } . timeOut
        expression "oa = 0.75 + 0.03 * sin(2.5 * a)"
      } . oa
    }
  }

  DEF mercury Separator {
    Translation { translation 0 0.6 0 }
    DEF mercuryOrbit Rotation {
      rotation = ComposeRotation {
        axis 0 1 0
        angle = Calculator { a = USE watch . timeOut expression "oa = 1.3 * a" } . oa
      } . rotation
    }
    USE brass
    Separator {
      RotationXYZ { axis Z angle 1.5708 }
      Translation { translation 0 -0.8 0 }
      Cylinder { radius 0.035 height 1.6 }
    }
    Translation { translation 1.6 0.4 0 }
    DEF post Cylinder { radius 0.03 height 0.8 }
    Translation { translation 0 0.5 0 }
    Material { diffuseColor 0.55 0.5 0.47 specularColor 0.3 0.3 0.3 shininess 0.5 }
    Sphere { radius 0.18 }
  }

  DEF venus Separator {
    Translation { translation 0 0.35 0 }
    DEF venusOrbit Rotation {
      rotation = ComposeRotation {
        axis 0 1 0
        angle = Calculator { a = USE watch . timeOut expression "oa = 0.8 * a + 2" } . oa
      } . rotation
    }
    USE brass
    Separator {
      RotationXYZ { axis Z angle 1.5708 }
      Translation { translation 0 -1.2 0 }
      Cylinder { radius 0.035 height 2.4 }
    }
    Translation { translation 2.4 0.4 0 }
    USE post
    Translation { translation 0 0.6 0 }
    Material { diffuseColor 0.85 0.68 0.4 specularColor 0.4 0.4 0.3 shininess 0.5 }
    Sphere { radius 0.28 }
  }

  DEF earth Separator {
    Translation { translation 0 0.1 0 }
    DEF earthOrbit Rotation {
      rotation = ComposeRotation {
        axis 0 1 0
        angle = Calculator { a = USE watch . timeOut expression "oa = 0.5 * a + 4" } . oa
      } . rotation
    }
    USE brass
    Separator {
      RotationXYZ { axis Z angle 1.5708 }
      Translation { translation 0 -1.7 0 }
      Cylinder { radius 0.035 height 3.4 }
    }
    Translation { translation 3.4 0.4 0 }
    USE post
    DEF moon Separator {
      DEF moonOrbit Rotation {
        rotation = ComposeRotation {
          axis 0 1 0
          angle = Calculator { a = USE watch . timeOut expression "oa = 2.6 * a" } . oa
        } . rotation
      }
      Separator {
        RotationXYZ { axis Z angle 1.5708 }
        Translation { translation 0 -0.35 0 }
        Cylinder { radius 0.02 height 0.7 }
      }
      Translation { translation 0.7 0.3 0 }
      Cylinder { radius 0.02 height 0.6 }
      Translation { translation 0 0.35 0 }
      Material { diffuseColor 0.75 0.75 0.78 specularColor 0.2 0.2 0.2 shininess 0.3 }
      Sphere { radius 0.11 }
    }
    Translation { translation 0 0.65 0 }
    Material { diffuseColor 0.16 0.4 0.75 specularColor 0.7 0.8 0.9 shininess 0.5 }
    Sphere { radius 0.32 }
  }

  DEF saturn Separator {
    Translation { translation 0 -0.15 0 }
    DEF saturnOrbit Rotation {
      rotation = ComposeRotation {
        axis 0 1 0
        angle = Calculator { a = USE watch . timeOut expression "oa = 0.22 * a + 0.6" } . oa
      } . rotation
    }
    USE brass
    Separator {
      RotationXYZ { axis Z angle 1.5708 }
      Translation { translation 0 -2.45 0 }
      Cylinder { radius 0.035 height 4.9 }
    }
    Translation { translation 4.9 0.4 0 }
    USE post
    Translation { translation 0 0.75 0 }
    Material { diffuseColor 0.82 0.7 0.5 specularColor 0.3 0.3 0.3 shininess 0.5 }
    Sphere { radius 0.48 }
    DEF ring Separator {
      Rotation { rotation 0 0 1 0.4 }
      Material { diffuseColor 0.75 0.66 0.52 specularColor 0.3 0.3 0.3 shininess 0.4 transparency 0.35 }
      Cylinder { radius 0.9 height 0.02 }
    }
  }
}
)scene";

} // namespace

SoRef<SoNode> makeHostScene() {
  SoInput in;
  in.setBuffer(ORRERY);
  return SoRef<SoNode>(SoDB::readAll(&in));
}
