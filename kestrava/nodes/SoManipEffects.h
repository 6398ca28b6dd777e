#pragma once

class SoClipPlane;
class SoDirectionalLight;
class SoPointLight;
class SoSpotLight;
class SoStateAction;
class SoTransform;

// What the plain nodes do to the traversal state, for the manipulators that are derived from them.
void SoApplyEffect(SoStateAction& action, SoTransform& node);
void SoApplyEffect(SoStateAction& action, SoDirectionalLight& node);
void SoApplyEffect(SoStateAction& action, SoPointLight& node);
void SoApplyEffect(SoStateAction& action, SoSpotLight& node);
void SoApplyEffect(SoStateAction& action, SoClipPlane& node);
