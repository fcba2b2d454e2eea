// The walk of a separable filter over a volume.
#include "array/signal_filter.h"

#include <cstdlib>
#include <limits>

#include "array/element.h"
#include "array/volume.h"
#include "array/volume_rounding.h"

namespace velquad::array {

namespace {

/// Doubles of all six line buffers, or no number when the count needs more than 32 bits.
bool countLineBuffers(std::uint64_t width, std::uint64_t height, std::uint64_t depth, std::size_t& count) {
    const std::uint64_t total = (depth + width + height) * 2;
    count = static_cast<std::size_t>(total);
    return total <= std::numeric_limits<std::uint32_t>::max();
}

}  // namespace

int CImageSignalFilter3D::Attach(void*** volume, const unsigned int* size, unsigned int type,
                                 unsigned int channels, const unsigned int* strides) {
    m_volume = volume;
    m_width = size[kAxisX];
    m_height = size[kAxisY];
    m_depth = size[kAxisZ];
    m_type = type;
    m_channels = channels;
    if (strides != nullptr) {
        m_strideX = strides[kAxisX];
        m_strideY = strides[kAxisY];
        m_strideZ = strides[kAxisZ];
    }
    std::size_t count = 0;
    if (!countLineBuffers(m_width, m_height, m_depth, count)) return 0;
    std::free(m_inLine[kAxisX]);
    auto* line = static_cast<double*>(std::calloc(count == 0 ? 1 : count, sizeof(double)));
    m_inLine[kAxisX] = line;
    if (line == nullptr) return 0;
    for (int axis = 0; axis < kAxes; ++axis, line += sizeAlong(axis - 1))
        m_inLine[axis] = line;
    for (int axis = 0; axis < kAxes; ++axis, line += sizeAlong(axis - 1))
        m_outLine[axis] = line;
    return 1;
}

int CImageSignalFilter3D::Run() {
    std::uint32_t counter = 0;
    for (std::uint32_t x = 0; m_depth > 1 && x < m_width; ++x) {
        for (std::uint32_t y = 0; y < m_height; ++y) {
            if (!filterLine(kAxisZ, x, y, 0, counter)) return kFilterCancelled;
        }
    }
    for (std::uint32_t z = 0; z < m_depth; ++z) {
        for (std::uint32_t x = 0; x < m_width; ++x) {
            if (!filterLine(kAxisY, x, 0, z, counter)) return kFilterCancelled;
        }
    }
    for (std::uint32_t y = 0; y < m_height; ++y) {
        for (std::uint32_t z = 0; z < m_depth; ++z) {
            if (!filterLine(kAxisX, 0, y, z, counter)) return kFilterCancelled;
        }
    }
    return kFilterDone;
}

int CImageSignalFilter3D::Detach() {
    std::free(m_inLine[kAxisX]);
    m_volume = nullptr;
    m_width = m_height = m_depth = 0;
    m_type = m_channels = 0;
    m_strideX = m_strideY = m_strideZ = 0;
    for (int axis = 0; axis < kAxes; ++axis)
        m_inLine[axis] = m_outLine[axis] = nullptr;
    m_callback = nullptr;
    m_callbackUser = nullptr;
    return 1;
}

int CImageSignalFilter3D::LoadLine(int axis, unsigned int x, unsigned int y, unsigned int z,
                                   unsigned int channel) {
    double* const line = m_inLine[axis];
    const std::size_t length = sizeAlong(axis);
    const bool isKnown = dispatchScalar(m_type, [&](auto element) {
        using ElementType = decltype(element);
        for (std::size_t i = 0; i < length; ++i) {
            const unsigned char* sample = sampleAt(axis, x, y, z, channel, ElementType::kBytes, i);
            line[i] = static_cast<double>(loadElement<typename ElementType::Value>(sample, 0));
        }
    });
    return isKnown ? 1 : 0;
}

int CImageSignalFilter3D::StoreLine(int axis, unsigned int x, unsigned int y, unsigned int z,
                                    unsigned int channel) {
    const double* const line = m_outLine[axis];
    const std::size_t length = sizeAlong(axis);
    const bool isKnown = dispatchScalar(m_type, [&](auto element) {
        using ElementType = decltype(element);
        for (std::size_t i = 0; i < length; ++i) {
            unsigned char* sample = sampleAt(axis, x, y, z, channel, ElementType::kBytes, i);
            storeElement(sample, 0, roundedTo<ElementType, Int32Rounder::kWide>(line[i]));
        }
    });
    return isKnown ? 1 : 0;
}

int CImageSignalFilter3D::Process(void*** volume, const unsigned int* size, unsigned int type,
                                  unsigned int channels, const unsigned int* strides) {
    const int result = Attach(volume, size, type, channels, strides) != 0 ? Run() : kFilterFailed;
    Detach();
    return result;
}

std::uint32_t CImageSignalFilter3D::sizeAlong(int axis) const {
    return axis == kAxisX ? m_width : axis == kAxisY ? m_height : m_depth;
}

std::uint32_t CImageSignalFilter3D::lineCount() const {
    return (m_width + m_height) * m_depth + (m_depth > 1 ? m_width * m_height : 0);
}

unsigned char* CImageSignalFilter3D::sampleAt(int axis, std::uint32_t x, std::uint32_t y, std::uint32_t z,
                                              std::uint32_t channel, std::size_t elementBytes,
                                              std::size_t index) const {
    const std::size_t offset = (std::size_t{x} * m_channels + channel) * elementBytes;
    switch (axis) {
        case kAxisX: {
            const std::size_t step = isStepGiven(m_strideX) ? m_strideX : m_channels * elementBytes;
            return rowAt(m_volume, z, y) + offset + index * step;
        }
        case kAxisY:
            if (isStepGiven(m_strideY)) return rowAt(m_volume, z, 0) + offset + index * m_strideY;
            return rowAt(m_volume, z, index) + offset;
        default:
            if (isStepGiven(m_strideZ)) return rowAt(m_volume, 0, y) + offset + index * m_strideZ;
            return rowAt(m_volume, index, y) + offset;
    }
}

bool CImageSignalFilter3D::filterLine(int axis, std::uint32_t x, std::uint32_t y, std::uint32_t z,
                                      std::uint32_t& counter) {
    if (m_callback != nullptr && m_callback(++counter, lineCount(), m_callbackUser) == 0) return false;
    for (std::uint32_t channel = 0; channel < m_channels; ++channel) {
        if (LoadLine(axis, x, y, z, channel) == 0) continue;
        if (FilterLine(axis, x, y, z, channel) != 0) StoreLine(axis, x, y, z, channel);
    }
    return true;
}

}  // namespace velquad::array
