// The frame of separable filters: walks a volume line by line along its three axes and hands each line of
// each channel, as doubles, to one virtual operation.
#ifndef VELQUAD_ARRAY_SIGNAL_FILTER_H
#define VELQUAD_ARRAY_SIGNAL_FILTER_H

#include <cstddef>
#include <cstdint>

namespace velquad::array {

inline constexpr int kAxisX = 0;
inline constexpr int kAxisY = 1;
inline constexpr int kAxisZ = 2;
inline constexpr int kAxes = 3;

/// Tells of every line before it is filtered; 0 stops the run.
using LineCallback = int (*)(unsigned int current, unsigned int total, void* user);

/// Results of a run.
inline constexpr int kFilterFailed = 0;
inline constexpr int kFilterDone = 1;
inline constexpr int kFilterCancelled = 2;

class CImageSignalFilter3D {
  public:
    CImageSignalFilter3D() = default;
    CImageSignalFilter3D(const CImageSignalFilter3D&) = delete;
    CImageSignalFilter3D& operator=(const CImageSignalFilter3D&) = delete;

    /// Filters one line: reads `m_inLine[axis]`, writes `m_outLine[axis]`.
    /// @param x, y, z  the line's fixed coordinates; the one along the axis is 0.
    /// @return non-zero to have the line stored.
    virtual int FilterLine(int axis, unsigned int x, unsigned int y, unsigned int z,
                           unsigned int channel) = 0;

    /// Takes up a volume and makes the line buffers.
    /// @param strides  optional: byte steps along the axes; 0 and 0xFFFFFFFF stand for none.
    /// @return 0 without memory, else 1.
    int Attach(void*** volume, const unsigned int* size, unsigned int type, unsigned int channels,
               const unsigned int* strides);

    /// Filters along Z (when there is more than one slice), Y, X.
    /// @return kFilterDone, or kFilterCancelled as soon as the callback says 0.
    int Run();

    /// Releases the buffers and sets all fields to zero, the callback included. @return 1.
    int Detach();

    /// Reads a line into `m_inLine[axis]`. @return 0 for a type outside 1 to 8, else 1.
    int LoadLine(int axis, unsigned int x, unsigned int y, unsigned int z, unsigned int channel);

    /// Rounds `m_outLine[axis]` into a line of the volume. @return 0 for a type outside 1 to 8, else 1.
    int StoreLine(int axis, unsigned int x, unsigned int y, unsigned int z, unsigned int channel);

    /// Attach, Run, Detach. @return the result of Run; 0 when the buffers are lacking.
    int Process(void*** volume, const unsigned int* size, unsigned int type, unsigned int channels,
                const unsigned int* strides);

    /// Elements along an axis.
    std::uint32_t sizeAlong(int axis) const;

    /// How many lines a run tells the callback of, modulo 2^32.
    std::uint32_t lineCount() const;

    /// The place of sample `index` of a line.
    unsigned char* sampleAt(int axis, std::uint32_t x, std::uint32_t y, std::uint32_t z,
                            std::uint32_t channel, std::size_t elementBytes, std::size_t index) const;

    static bool isStepGiven(std::uint32_t stride) { return stride != 0 && stride != 0xFFFFFFFFU; }

    void*** m_volume = nullptr;         ///< Slice table of the volume in work.
    std::uint32_t m_width = 0;          ///< Elements per row.
    std::uint32_t m_height = 0;         ///< Rows per slice.
    std::uint32_t m_depth = 0;          ///< Slices.
    std::uint32_t m_type = 0;           ///< Element type code.
    std::uint32_t m_channels = 0;       ///< Interleaved channels.
    std::uint32_t m_strideX = 0;        ///< Byte step along a row.
    std::uint32_t m_strideY = 0;        ///< Byte step from row to row.
    std::uint32_t m_strideZ = 0;        ///< Byte step from slice to slice.
    double* m_inLine[kAxes] = {};       ///< Line to be filtered, for each axis; one allocation for all six.
    double* m_outLine[kAxes] = {};      ///< Filtered line, for each axis.
    LineCallback m_callback = nullptr;  ///< May be null.
    void* m_callbackUser = nullptr;     ///< Handed on to the callback.

  protected:
    // Objects live on the stack and are never released through the base.
    ~CImageSignalFilter3D() = default;

  private:
    /// One line of all channels, the callback first. @return false when the callback says 0.
    bool filterLine(int axis, std::uint32_t x, std::uint32_t y, std::uint32_t z, std::uint32_t& counter);
};

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_SIGNAL_FILTER_H
