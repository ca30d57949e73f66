// A narrow string whose comparisons ignore case.
#ifndef CISSTRING_H
#define CISSTRING_H

#include <string>

// A text in the multibyte encoding of the C locale, compared byte by byte without regard to case, up to the first NUL.
// A plain value; everything but comparing and append is that of std::string. Do not delete one through a base pointer.
class cisString : public std::string {
public:
    cisString() = default;
    explicit cisString(const std::string& text) : std::string(text) {}
    explicit cisString(const char* text) : std::string(text) {}

    using std::string::append;
    // Appends count units of wide text from pos on. Throws LDIF_Exception (163) when the locale cannot express them.
    virtual cisString& append(const std::wstring& source, unsigned int pos, unsigned int count);

    // Negative, 0 or positive as *this sorts before, with or after other.
    virtual int compare(const cisString& other) const;
    virtual int compare(const std::string& other) const { return compare(other.c_str()); }
    virtual int compare(const char* other) const;

    virtual bool operator==(const cisString& other) const { return compare(other) == 0; }
    virtual bool operator==(const std::string& other) const { return compare(other) == 0; }
    virtual bool operator==(const char* other) const { return compare(other) == 0; }
    virtual bool operator<(const cisString& other) const { return compare(other) < 0; }
    virtual bool operator<(const std::string& other) const { return compare(other) < 0; }
    virtual bool operator<(const char* other) const { return compare(other) < 0; }
    virtual bool operator>(const cisString& other) const { return compare(other) > 0; }
    virtual bool operator>(const std::string& other) const { return compare(other) > 0; }
    virtual bool operator>(const char* other) const { return compare(other) > 0; }
    virtual bool operator!=(const cisString& other) const { return compare(other) != 0; }
    virtual bool operator!=(const std::string& other) const { return compare(other) != 0; }
    virtual bool operator!=(const char* other) const { return compare(other) != 0; }
    virtual bool operator<=(const cisString& other) const { return compare(other) <= 0; }
    virtual bool operator<=(const std::string& other) const { return compare(other) <= 0; }
    virtual bool operator<=(const char* other) const { return compare(other) <= 0; }
    virtual bool operator>=(const cisString& other) const { return compare(other) >= 0; }
    virtual bool operator>=(const std::string& other) const { return compare(other) >= 0; }
    virtual bool operator>=(const char* other) const { return compare(other) >= 0; }
};

#endif
