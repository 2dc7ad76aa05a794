#include "backends/linux/x11/ColorMatrices.h"

#include "backends/linux/x11/RootProperty.h"
#include "backends/linux/x11/XcbRequests.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace nocta {

namespace {

constexpr std::string_view propertyOfOutputs = "CTM";

/// Returns XCB_ATOM_NONE if no output of the server has this property.
xcb_atom_t matrixAtom(xcb_connection_t* connection) {
    return internAtom(connection, propertyOfOutputs, true);
}

/// The property contains a record for each output: the output and its matrix.
RootProperty property(xcb_connection_t* connection, xcb_window_t root) {
    return {connection, root, "_NOCTA_FACTORY_MATRICES"};
}

} // namespace

ColorMatrix grayMatrix() {
    ColorMatrix matrix{};
    std::size_t place = 0;
    for (int row = 0; row < 3; ++row) {
        for (const auto weight : {0.2126, 0.7152, 0.0722}) {
            const auto fixed = static_cast<std::uint64_t>(std::llround(std::ldexp(weight, 32)));
            matrix[place++] = static_cast<std::uint32_t>(fixed);
            matrix[place++] = static_cast<std::uint32_t>(fixed >> 32);
        }
    }
    return matrix;
}

std::optional<ColorMatrix> readMatrix(xcb_connection_t* connection, xcb_randr_output_t output) {
    ColorMatrix matrix{};
    const XcbReply<xcb_randr_get_output_property_reply_t> reply(xcb_randr_get_output_property_reply(
        connection,
        xcb_randr_get_output_property(connection, output, matrixAtom(connection), XCB_ATOM_INTEGER,
                                      0, matrix.size(), 0, 0),
        nullptr));
    if (!reply || reply->format != 32 || reply->num_items != matrix.size() ||
        reply->bytes_after != 0) {
        return std::nullopt;
    }
    const auto* const numbers =
        reinterpret_cast<const std::uint32_t*>(xcb_randr_get_output_property_data(reply.get()));
    std::copy_n(numbers, matrix.size(), matrix.begin());
    return matrix;
}

void writeMatrix(xcb_connection_t* connection, xcb_randr_output_t output,
                 const ColorMatrix& matrix) {
    xcb_randr_change_output_property(connection, output, matrixAtom(connection), XCB_ATOM_INTEGER,
                                     32, XCB_PROP_MODE_REPLACE, std::tuple_size_v<ColorMatrix>,
                                     matrix.data());
}

FactoryMatrices readFactoryMatrices(xcb_connection_t* connection, xcb_window_t root) {
    constexpr auto recordLength = 1 + std::tuple_size_v<ColorMatrix>;
    const auto numbers = property(connection, root).read();
    auto rest = std::span(numbers);
    FactoryMatrices matrices;
    for (; rest.size() >= recordLength; rest = rest.subspan(recordLength)) {
        ColorMatrix matrix{};
        std::ranges::copy(rest.subspan(1, matrix.size()), matrix.begin());
        matrices.insert_or_assign(rest[0], matrix);
    }
    return matrices;
}

void storeFactoryMatrices(xcb_connection_t* connection, xcb_window_t root,
                          const FactoryMatrices& matrices) {
    std::vector<std::uint32_t> numbers;
    for (const auto& [output, matrix] : matrices) {
        numbers.push_back(output);
        numbers.insert(numbers.end(), matrix.begin(), matrix.end());
    }
    property(connection, root).write(numbers);
}

void restore(xcb_connection_t* connection, xcb_window_t root, const FactoryMatrices& matrices) {
    for (const auto& [output, matrix] : matrices) {
        writeMatrix(connection, output, matrix);
    }
    storeFactoryMatrices(connection, root, {});
}

} // namespace nocta
