#pragma once

#include <xcb/randr.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>

namespace nocta {

/// An output's colour transformation matrix, as its property "CTM" has it: rows for red, green and
/// blue, each of three sign-magnitude fixed-point numbers with 31 whole and 32 fractional bits, of
/// each number the lower half first.
using ColorMatrix = std::array<std::uint32_t, 18>;

/// The matrices that outputs had before Nocta wrote to them, by output.
using FactoryMatrices = std::map<xcb_randr_output_t, ColorMatrix>;

/// Every channel is the luma of the picture, by the weights of ITU-R Recommendation BT.709.
ColorMatrix grayMatrix();

/// What an output has now; none where it has no such property.
std::optional<ColorMatrix> readMatrix(xcb_connection_t* connection, xcb_randr_output_t output);

void writeMatrix(xcb_connection_t* connection, xcb_randr_output_t output,
                 const ColorMatrix& matrix);

// Like the factory ramps, the matrices are kept on the server for as long as they are not in force.

/// What is kept.
FactoryMatrices readFactoryMatrices(xcb_connection_t* connection, xcb_window_t root);

/// Keeps these and no others, at once for whoever reads them.
void storeFactoryMatrices(xcb_connection_t* connection, xcb_window_t root,
                          const FactoryMatrices& matrices);

/// Writes all of them to their outputs and keeps them no more.
void restore(xcb_connection_t* connection, xcb_window_t root, const FactoryMatrices& matrices);

} // namespace nocta
