#pragma once

#include "csv/csvnumbers.hpp"
#include "openface/openfacecolumns.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/openfaceface.hpp>

namespace KV::recordings
{

/// Reads the face of a row of OpenFace; the columns of action units are those that the adapter asks for.
///
/// \throws BadLine if the field of a column that is read is not a number.
OpenFaceFace readOpenFaceFace(const CsvNumbers& numbers, const OpenFaceColumns& columns, const FaceAdapter& adapter);

}  // namespace KV::recordings
