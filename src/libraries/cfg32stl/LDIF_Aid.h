// What an object keeps for speed alone.
#ifndef LDIF_AID_H
#define LDIF_AID_H

// A member that is no part of its object's value: a copy of the object starts with a new one, a move takes it along.
template <typename T>
class LDIF_Aid {
public:
    LDIF_Aid() = default;
    LDIF_Aid(const LDIF_Aid& /*other*/) noexcept {}
    LDIF_Aid(LDIF_Aid&& other) noexcept = default;
    LDIF_Aid& operator=(const LDIF_Aid& other) noexcept
    {
        if (this != &other)
            held = T();
        return *this;
    }
    LDIF_Aid& operator=(LDIF_Aid&& other) noexcept = default;
    ~LDIF_Aid() = default;

    T& operator*() noexcept { return held; }
    const T& operator*() const noexcept { return held; }
    T* operator->() noexcept { return &held; }
    const T* operator->() const noexcept { return &held; }

private:
    T held = T();
};

#endif
