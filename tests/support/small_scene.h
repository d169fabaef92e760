// A scene of one quad, a light and two cameras, as a glTF text.
#pragma once

#include <string>

namespace support {

// `settings` is the inside of the scene's "standin" object, `cameraSettings` that of the camera node Camera01.
inline std::string smallScene(const std::string& settings = "", const std::string& cameraSettings = "") {
  return R"({"asset":{"version":"2.0"},"scene":0,
    "scenes":[{"nodes":[0,1,2,3],"extras":{"standin":{)" +
         settings + R"(}}}],
    "nodes":[
      {"name":"Quad","mesh":0},
      {"name":"Camera01","camera":0,"translation":[0,0,5],"extras":{"standin":{)" +
         cameraSettings + R"(}}},
      {"name":"Sun","extensions":{"KHR_lights_punctual":{"light":0}}},
      {"name":"Side","camera":0,"extras":{"shots":12},"translation":[5,0,0],"rotation":[0,0.70710678,0,0.70710678],"children":[4]},
      {"name":"Multipass","camera":0}],
    "cameras":[{"type":"perspective","perspective":{"yfov":0.8,"znear":0.01}}],
    "extensionsUsed":["KHR_lights_punctual"],
    "extensions":{"KHR_lights_punctual":{"lights":[{"type":"directional","intensity":3}]}},
    "materials":[{"pbrMetallicRoughness":{"baseColorFactor":[0.8,0.2,0.1,1],"metallicFactor":0}}],
    "meshes":[{"name":"Quad","primitives":[{"attributes":{"POSITION":0},"indices":1,"material":0}]}],
    "accessors":[
      {"bufferView":0,"componentType":5126,"count":4,"type":"VEC3","min":[-1,-1,0],"max":[1,1,0]},
      {"bufferView":1,"componentType":5123,"count":6,"type":"SCALAR"}],
    "bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":48},{"buffer":0,"byteOffset":48,"byteLength":12}],
    "buffers":[{"byteLength":60,"uri":"data:application/octet-stream;base64,AACAvwAAgL8AAAAAAACAPwAAgL8AAAAAAACAPwAAgD8AAAAAAACAvwAAgD8AAAAAAAABAAIAAAACAAMA"}]})";
}

}  // namespace support
