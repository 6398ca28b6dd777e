// The list of the pages, and what is said about each.

#include "apps/gallery/GalleryBehaviour.h"
#include "apps/gallery/GalleryPage.h"
#include "kestrava/base/SoModuleTool.h"

// clang-format off
static std::vector<GalleryPage> makePages() {
  auto* const still = GalleryPage::still;
  std::vector<GalleryPage> pages{
      {"Shapes", "primitives", "Primitives",
       "The four basic shapes: whole, with some of their parts, and with a colour for each part.", still},
      {"Shapes", "face-sets", "Face sets",
       "Faces from corners in order: one colour for all, a colour for each face, a colour for each corner.", still},
      {"Shapes", "indexed-faces", "Indexed face sets",
       "Faces from corners by index. The indexed bindings choose their colours by index, too: here in reverse.", still},
      {"Shapes", "strips", "Triangle strips",
       "Two waving bands of triangles. Above from corners in order, below by index; a part is a band.", still},
      {"Shapes", "quad-mesh", "Quad mesh",
       "A saddle of quadrilaterals. A part is a row; with a colour for each corner it shades smoothly.", still},
      {"Shapes", "line-sets", "Line sets",
       "A star and a pentagon. A part is a segment, a face is a whole line; below by index.", still},
      {"Shapes", "points", "Point sets",
       "A grid of points in three sizes, with a colour for each, and the first rows alone.", still},
      {"Shapes", "concave", "Concave faces",
       "Faces with dents, holes by crossing, and windings. Only the last one, which was declared convex, is drawn wrong: "
       "that is what the declaration means.", still},
      {"Shapes", "normals", "Normals",
       "A folded screen with computed normals and with given ones. Smooth ones hide the folds.", still},
      {"Shapes", "crease-angle", "Crease angle",
       "A drum whose normals are computed: its sides turn smooth when the crease angle exceeds their 30 degrees, its rims "
       "when it exceeds 90.", still},
      {"Shapes", "shape-hints", "Shape hints",
       "An open box. As a solid of known order it loses the faces that turn away; with the wrong order, the near ones.",
       still},
      {"Shapes", "vertex-property", "Vertex property",
       "Corners, colours with alpha, texture coordinates and bindings in a single node.", still},
      {"Shapes", "copies", "Copies", "One shape at many places: along a grid, and by matrices.", still},

      {"Light", "lights", "Lights",
       "Nine rooms, each with lights of its own: parallel, from a point, in a cone, fading and coloured.", still},
      {"Light", "spot-light", "Spot lights",
       "A cone of light on a plane: wider to the right, then softer towards its edge, then from the side.", still},
      {"Light", "materials", "Materials",
       "The same ball with the parts of a material: dull, glossy, shining by itself, transparent, and without light.", still},
      {"Light", "ambient", "Ambient light", "More light from everywhere fills the dark side; coloured, it tints it.", still},
      {"Light", "fog", "Fog",
       "Four avenues. Haze grows evenly with the distance, fog is thick at once, smoke leaves what is near clear.", still},

      {"Look", "draw-styles", "Draw styles", "Filled, lines, points, and invisible; widths and patterns of lines.", still},
      {"Look", "transparency", "Transparency",
       "Panes that cross and balls of glass. Choose below how transparent things are drawn, and turn the scene.",
       GalleryBehaviour::transparency},
      {"Look", "complexity", "Complexity", "The same solids coarse and fine, as boxes, and letters coarse and fine.", still},
      {"Look", "clip-planes", "Clip planes", "A ball with a cube inside, cut by planes. What is cut is hollow.", still},
      {"Look", "annotation", "Annotation", "A ball inside a cube is hidden; in an annotation it is drawn over the cube.", still},
      {"Look", "backgrounds", "Backgrounds", "Choose below what fills the window behind the cube.", still},

      {"Text", "ascii-text", "Flat text", "Justified at the red line, widely spaced, fitted to a width, and in light.", still},
      {"Text", "text3", "Solid text", "Text with a thickness, whole and in parts.", still},
      {"Text", "text2", "Screen text",
       "This text keeps its size in pixels and faces you: turn the scene and go nearer.", still},

      {"Textures", "textures", "Textures",
       "The red corner is the lower left one of the picture; its upper rows are lighter.", still},
      {"Textures", "texture-wrap", "Wrap and transform",
       "Beyond its edge a picture is repeated, or its edge goes on. Below it is moved, turned and made smaller.", still},
      {"Textures", "texture-models", "Models",
       "How a picture meets the orange of the material: it is multiplied, laid over, or mixes orange with blue.", still},
      {"Textures", "texture-alpha", "Alpha",
       "Leaves cut out of their squares, and coloured glass that what stands behind shines through.", still},
      {"Textures", "texture-projection", "Projections",
       "Pictures projected by a plane, and reflections of the surroundings: turn the scene.", still},
      {"Textures", "texture3", "Textures with depth",
       "Rings around an axis, as in a trunk: the shapes look as if cut out of it.", still},

      {"Structure", "transforms", "Transformations",
       "Each transformation moves the arrow away from where its outline stands.", still},
      {"Structure", "switch", "Switch", "A switch shows one of its three children, none, or all of them.", still},
      {"Structure", "level-of-detail", "Level of detail",
       "Green is fine, yellow coarse, and red a mere box. Go nearer with the wheel and see them change.", still},
      {"Structure", "units", "Units", "One cylinder in different units of length beside a rule of two metres.", still},
      {"Structure", "models", "Other formats",
       "Files of other programs, each the whole contents of a file node: OBJ, PLY and STL.", still},
      {"Structure", "kits", "Node kits", "A scene made of kits alone: camera, lights, and six things.", still},

      {"Shaders", "shader", "Shaders",
       "Stages of the scene's own: steps of light, waves, stripes, smaller faces, and two pictures at once.", still},
      {"Shaders", "animation", "Animation",
       "Engines compute all of this from the time. Stop it below.", GalleryBehaviour::animation},

      {"Interaction", "picking", "Picking",
       "Click: the place is marked, with an arrow along the normal, and what is known of it stands below.",
       GalleryBehaviour::picking},
      {"Interaction", "selection", "Selection",
       "Click to select, with Shift to select more. Choose below how it is marked.", GalleryBehaviour::selection},
      {"Interaction", "draggers", "Draggers",
       "Drag the handles: what stands at each of them follows. Shift keeps to one axis, Escape puts it back.",
       GalleryBehaviour::handles},
      {"Interaction", "transform-draggers", "Transform draggers",
       "Drag the handles: each of these moves, turns or scales its shape.", GalleryBehaviour::handles},
      {"Interaction", "manipulators", "Manipulators",
       "Transforms with handles around the shape that follows, and a plane that cuts it. Drag them.",
       GalleryBehaviour::handles},
      {"Interaction", "light-manipulators", "Light manipulators",
       "Lights with handles: drag the balls, the arrows' tips, and the rim of the cone.", GalleryBehaviour::handles},
  };
  // That page needs an optional module, which stays for the life of the program.
  if (!SoModuleTool::initModule("foreign_formats")) {
    std::erase_if(pages, [](GalleryPage const& page) { return page.name == std::string_view("models"); });
  }
  return pages;
}

std::vector<GalleryPage> const& GalleryPage::all() {
  static std::vector<GalleryPage> const pages = makePages();
  return pages;
}
