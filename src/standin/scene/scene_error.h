// The one exception of scene loading.
#pragma once

#include <stdexcept>

namespace standin::scene {

// The text names the file, the place in it, what was expected there and what was found.
class SceneError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace standin::scene
