/*
 * pwcodec.h - the stored form of passwords.
 *
 * This is an encoding and no protection: whoever can read an encoded password can decode it. It keeps passwords from
 * being read over a shoulder or found by a search for their text, and no more. Guard the file that holds them.
 *
 * An encoded text is ">", the version "1", base64url (RFC 4648) of salt, masked clear text and check sum, and "<":
 * printable ASCII without blanks, at most 200 bytes for a clear text of 46 bytes. A clear text has any length but
 * no NUL. The salt differs from call to call, and so do the encoded texts of one password.
 *
 * All calls may be made from several threads at once. Texts are terminated by a NUL. The four names begin with an
 * underscore because the programs that call them know them so.
 */
#ifndef PWCODEC_H
#define PWCODEC_H

#if defined(__GNUC__) && !defined(_WIN32)
#define PWCODEC_API __attribute__((visibility("default")))
#else
#define PWCODEC_API /* the linker's list of names says what is exported */
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The status of a call. */
enum {
    PWCODEC_SUCCESS = 0,
    PWCODEC_ARGUMENT = 201,  /* a null argument */
    PWCODEC_FORMAT = 202,    /* not a text that this codec has encoded */
    PWCODEC_CHECKSUM = 203,  /* a text of this codec that has been damaged */
    PWCODEC_MEMORY = 204,    /* memory is exhausted */
    PWCODEC_RANDOMNESS = 205 /* the system gives no random numbers for the salt */
};

/*
 * Encodes a text. On success *encoded is new, and belongs to the caller until _pwcodec_encode_buffer_free releases it.
 * Nothing else may: the codec's heap need not be the caller's, as with another C runtime on Windows.
 */
PWCODEC_API int _pwcodec_encode_buffer(const char* clearText, char** encoded);

/* Releases *encoded and sets it to null. Null is allowed. Always 0. */
PWCODEC_API int _pwcodec_encode_buffer_free(char** encoded);

/*
 * Decodes a text. On success *clearText is new, and belongs to the caller until _pwcodec_decode_buffer_free releases
 * it, which nothing else may; overwriting it before is the caller's task. encodedText is the caller's working copy,
 * which a codec may write into; this one does not.
 */
PWCODEC_API int _pwcodec_decode_buffer(char* encodedText, char** clearText);

/* Releases *clearText and sets it to null. Null is allowed. Always 0. */
PWCODEC_API int _pwcodec_decode_buffer_free(char** clearText);

#ifdef __cplusplus
}
#endif

#endif
