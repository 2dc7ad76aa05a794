#pragma once

#include <xcb/randr.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>

namespace nocta {

/// An output's color transformation matrix, as stored in its "CTM" property: rows for red, green
/// and blue, each of three sign-magnitude fixed-point numbers with 31 integer and 32 fractional
/// bits. The lower half of each number comes first.
using ColorMatrix = std::array<std::uint32_t, 18>;

/// The matrices that outputs had before Nocta wrote to them, by output.
using FactoryMatrices = std::map<xcb_randr_output_t, ColorMatrix>;

/// A matrix that sets every channel to the picture's luma, with the weights from ITU-R
/// Recommendation BT.709.
ColorMatrix grayMatrix();

/// The current matrix of an output, or nothing if it has no such property.
std::optional<ColorMatrix> readMatrix(xcb_connection_t* connection, xcb_randr_output_t output);

void writeMatrix(xcb_connection_t* connection, xcb_randr_output_t output,
                 const ColorMatrix& matrix);

// Like the factory ramps, the factory matrices are kept on the server while Nocta's own matrices
// are set.

/// The stored matrices.
FactoryMatrices readFactoryMatrices(xcb_connection_t* connection, xcb_window_t root);

/// Replaces the stored matrices. Later reads return the new ones immediately.
void storeFactoryMatrices(xcb_connection_t* connection, xcb_window_t root,
                          const FactoryMatrices& matrices);

/// Writes the given matrices to their outputs and removes the stored ones.
void restore(xcb_connection_t* connection, xcb_window_t root, const FactoryMatrices& matrices);

} // namespace nocta
