#pragma once

#include <string>

namespace KV::tools
{

/// A model of the user, with which the page finds faces.
struct FaceModel
{
  std::string name;     ///< of the file, without its folder
  std::string content;  ///< the whole file
};

/// Reads the file of a model, such as the face_landmarker.task of MediaPipe. Only a browser can try the model; files
/// that are certainly no model are refused here.
///
/// \throws recordings::Error that names the file, if it cannot be read, is no regular file, has more than 64 MiB, or
///   does not begin as a ZIP archive does.
FaceModel readFaceModel(const std::string& path);

}  // namespace KV::tools
