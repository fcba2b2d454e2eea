/// @file
/// The class framework that the exported classes stand on: objects that know their class at run time, points and
/// sizes with operators, exceptions that are thrown by pointer, and the application object.
///
/// A host that is built on the real class framework includes its headers before this one; then nothing is
/// declared here and the framework's own classes are used. In every other program the same few names are
/// declared here and exported by the module. Which of the two holds is decided in this file alone; a module and
/// its host must agree on it.
#ifndef VELQUAD_FRAMEWORK_H
#define VELQUAD_FRAMEWORK_H

#include "velquad/platform.h"

#if !defined(__AFX_H__) && !defined(__AFXWIN_H__)

#include <atomic>

class CArchive;
class CDumpContext;
class CObject;

/// The record of a class at run time. One static record exists for each class that takes part; its address is the
/// identity of the class.
struct VELQUAD_API CRuntimeClass {
    const char* m_lpszClassName;      ///< Name, ASCII; what archives store.
    int m_nObjectSize;                ///< Size of an object in bytes.
    UINT m_wSchema;                   ///< Version of the archive form; 0xFFFF for none.
    CObject* (*m_pfnCreateObject)();  ///< Makes a default object; null for a class without such a factory.
    CRuntimeClass* (*m_pfnGetBaseClass)();  ///< Gives the base class's record; null for `CObject`.
    CRuntimeClass* m_pNextClass;            ///< Link of the registration list, not for callers.

    /// Makes an object of the class on the heap; the caller deletes it.
    /// @return the object, or null for a class without a factory. Memory shortage throws `std::bad_alloc`.
    CObject* CreateObject() const;

    /// Tells whether the class is `base` or derives from it, in any number of steps.
    /// @return non-zero when it does; 0 otherwise and for a null `base`.
    BOOL IsDerivedFrom(const CRuntimeClass* base) const;

    /// Finds a registered class by its exact name.
    /// @return the record, or null for an unknown or null name.
    static CRuntimeClass* FromName(const char* name);
};

/// Registers a class, so that `CRuntimeClass::FromName` and archives find it. Registering a record twice changes
/// nothing. The record must live as long as the module is loaded. A null record is ignored.
VELQUAD_API void AfxClassInit(CRuntimeClass* record);

/// Base of all objects that know their class.
///
/// The order of the virtual functions is part of the interface.
class VELQUAD_API CObject {
  public:
    /// @return the record of the object's own class, never null.
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();
    /// Stores or loads the object; the base has nothing to store.
    virtual void Serialize(CArchive& archive);
    /// A place for checks of a class on itself; empty here.
    virtual void AssertValid() const;
    /// A place for a description of the object; empty here.
    virtual void Dump(CDumpContext& context) const;

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    /// Tells whether the object's class is `record` or derives from it.
    /// @return non-zero when it does; 0 otherwise and for null.
    BOOL IsKindOf(const CRuntimeClass* record) const;

    /// @return the record of `CObject` itself.
    static CRuntimeClass* GetThisClass();

    static CRuntimeClass classCObject;  ///< Name "CObject", no schema, no factory, no base.

  protected:
    CObject() = default;
};

/// The extent of a pixel rectangle, with operators. Has the layout of `tagSIZE`.
class CSize : public tagSIZE {
  public:
    /// (0, 0).
    CSize() : tagSIZE{0, 0} {}
    CSize(int width, int height) : tagSIZE{width, height} {}
    CSize(const tagSIZE& size) : tagSIZE(size) {}  // NOLINT: meant to convert

    bool operator==(const tagSIZE& other) const { return cx == other.cx && cy == other.cy; }
    bool operator!=(const tagSIZE& other) const { return !(*this == other); }
    // Exact matches for two objects of the class, which C++20 would find ambiguous with the operands reversed.
    bool operator==(const CSize& other) const { return cx == other.cx && cy == other.cy; }
    bool operator!=(const CSize& other) const { return !(*this == other); }
    /// Sets both extents.
    void SetSize(int width, int height) { *this = CSize(width, height); }
};

/// A pixel position, with operators. Has the layout of `tagPOINT`.
///
/// Sums and differences wrap around in 32 bits.
class CPoint : public tagPOINT {
  public:
    /// (0, 0).
    CPoint() : tagPOINT{0, 0} {}
    CPoint(int newX, int newY) : tagPOINT{newX, newY} {}
    CPoint(const tagPOINT& point) : tagPOINT(point) {}  // NOLINT: meant to convert
    explicit CPoint(const tagSIZE& size) : tagPOINT{size.cx, size.cy} {}

    bool operator==(const tagPOINT& other) const { return x == other.x && y == other.y; }
    bool operator!=(const tagPOINT& other) const { return !(*this == other); }
    // Exact matches for two objects of the class, which C++20 would find ambiguous with the operands reversed.
    bool operator==(const CPoint& other) const { return x == other.x && y == other.y; }
    bool operator!=(const CPoint& other) const { return !(*this == other); }

    /// Moves the point by a vector.
    void Offset(int dx, int dy) {
        x = sum(x, dx);
        y = sum(y, dy);
    }
    void Offset(const tagPOINT& vector) {
        x = sum(x, vector.x);
        y = sum(y, vector.y);
    }
    void Offset(const tagSIZE& vector) {
        x = sum(x, vector.cx);
        y = sum(y, vector.cy);
    }
    /// Sets both coordinates.
    void SetPoint(int newX, int newY) { *this = CPoint(newX, newY); }

    CPoint& operator+=(const tagPOINT& vector) {
        Offset(vector);
        return *this;
    }
    CPoint& operator+=(const tagSIZE& vector) {
        Offset(vector);
        return *this;
    }
    CPoint& operator-=(const tagPOINT& vector) {
        x = difference(x, vector.x);
        y = difference(y, vector.y);
        return *this;
    }
    CPoint& operator-=(const tagSIZE& vector) {
        x = difference(x, vector.cx);
        y = difference(y, vector.cy);
        return *this;
    }

    /// A point moved by a vector.
    CPoint operator+(const tagPOINT& vector) const { return CPoint(*this) += vector; }
    CPoint operator+(const tagSIZE& vector) const { return CPoint(*this) += vector; }
    CPoint operator-(const tagSIZE& vector) const { return CPoint(*this) -= vector; }
    /// The vector from `other` to this point.
    CSize operator-(const tagPOINT& other) const {
        return CSize(difference(x, other.x), difference(y, other.y));
    }
    /// The point mirrored at the origin.
    CPoint operator-() const { return CPoint(difference(0, x), difference(0, y)); }

  private:
    static int sum(LONG a, LONG b) {
        return static_cast<int>(static_cast<unsigned int>(a) + static_cast<unsigned int>(b));
    }
    static int difference(LONG a, LONG b) {
        return static_cast<int>(static_cast<unsigned int>(a) - static_cast<unsigned int>(b));
    }
};

/// Base of the exceptions of the framework. They are thrown by pointer, and whoever catches one for good calls
/// `Delete` on it once:
///
///     try {
///         matComputeVoronoiMap2D(map);
///     } catch (CException* exception) {
///         exception->Delete();
///     }
class VELQUAD_API CException : public CObject {
  public:
    /// @param isAutoDelete  non-zero for an object made by `new`, which `Delete` destroys; 0 for one that stays.
    explicit CException(BOOL isAutoDelete);
    /// An object made by `new`.
    CException();
    ~CException() override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass classCException;  ///< Name "CException", no schema, no factory, base `CObject`.

    /// Ends the exception's life, in the way that suits how it was made.
    void Delete();

  private:
    BOOL isAutoDelete_;
};

/// An argument was out of range: what the bounds-checked arrays throw.
class VELQUAD_API CInvalidArgException : public CException {
  public:
    explicit CInvalidArgException(BOOL isAutoDelete);
    CInvalidArgException();
    ~CInvalidArgException() override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    /// Name "CInvalidArgException", no schema, no factory, base `CException`.
    static CRuntimeClass classCInvalidArgException;
};

/// Throws a `CInvalidArgException*`.
///
/// The object is one for the whole process, is never written and never destroyed: any number of threads may have
/// it in flight at once, its `Delete` does nothing, and no memory is needed to make it.
[[noreturn]] VELQUAD_API void AfxThrowInvalidArgException();

/// The running application, as far as the library knows it: whom it tells that the user has to wait.
///
/// A host that wants to show a wait cursor derives from this class, overrides `DoWaitCursor` and constructs one
/// object; from then on until it is destroyed that object is the running application.
class VELQUAD_API CWinApp : public CObject {
  public:
    /// Makes this object the running application.
    CWinApp();
    /// Makes the module's own object the running application again, if it is this one.
    ~CWinApp() override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass classCWinApp;  ///< Name "CWinApp", no schema, no factory, base `CObject`.

    /// Starts a wait; waits nest. Calls `DoWaitCursor(1)`.
    void BeginWaitCursor();
    /// Ends the innermost wait. Calls `DoWaitCursor(-1)`.
    void EndWaitCursor();
    /// Shows the wait cursor again if a wait is on. Calls `DoWaitCursor(0)`.
    void RestoreWaitCursor();

    /// Counts the waits. An override that shows a cursor calls this one too. May be called from any thread.
    /// @param code  1 to begin, -1 to end, 0 to restore; an end without a beginning is ignored.
    virtual void DoWaitCursor(int code);

    /// @return how many waits have begun and not ended.
    int GetWaitCursorCount() const;

  private:
    struct ModuleOwn {};
    explicit CWinApp(ModuleOwn);
    friend VELQUAD_API CWinApp* AfxGetApp();

    std::atomic<int> waitCursorCount_{0};
};

/// @return the running application: the host's object, or the module's own as long as there is none. Never null.
VELQUAD_API CWinApp* AfxGetApp();

/// Keeps the running application in a wait for the length of a scope.
class CWaitCursor {
  public:
    CWaitCursor() : application_(AfxGetApp()) { application_->BeginWaitCursor(); }
    ~CWaitCursor() { application_->EndWaitCursor(); }
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;
    /// Shows the wait cursor again, after something else was shown.
    void Restore() { application_->RestoreWaitCursor(); }

  private:
    CWinApp* application_;
};

#endif  // stand-ins

#endif  // VELQUAD_FRAMEWORK_H
