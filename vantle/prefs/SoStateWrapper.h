#pragma once

class SoVantleState;

/// A registered state; owned by its panel, which takes it back when it goes.
struct SoStateWrapper {
  SoVantleState* state = nullptr;
};
