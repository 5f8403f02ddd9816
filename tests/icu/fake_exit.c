/*
 * A user sort exit that hands over to the test program. WITHOUT_... leave an entry point out.
 */
#include <stdint.h>

int32_t fake_init(const char *collation, void **user);
void fake_term(void *user);
int32_t fake_compare(const char *a, const char *b, const unsigned char *insensitive,
                     const unsigned char *sensitive, uint32_t mode, void *user);
void fake_copy(unsigned char *key, const char *source, uint32_t size, const unsigned char *insensitive,
               const unsigned char *sensitive, uint32_t mode, void *user);

#if !defined(WITHOUT_INIT)
int32_t UserSortInit(const char *collation, void **user);
int32_t UserSortInit(const char *collation, void **user) {
    return fake_init(collation, user);
}
#endif
#if !defined(WITHOUT_TERM)
void UserSortTerm(void *user);
void UserSortTerm(void *user) {
    fake_term(user);
}
#endif
#if !defined(WITHOUT_COMP)
int32_t UserSortComp(const char *a, const char *b, const unsigned char *insensitive,
                     const unsigned char *sensitive, uint32_t mode, void *user);
int32_t UserSortComp(const char *a, const char *b, const unsigned char *insensitive,
                     const unsigned char *sensitive, uint32_t mode, void *user) {
    return fake_compare(a, b, insensitive, sensitive, mode, user);
}
#endif
#if !defined(WITHOUT_COPY)
void UserSortCopy(unsigned char *key, const char *source, uint32_t size, const unsigned char *insensitive,
                  const unsigned char *sensitive, uint32_t mode, void *user);
void UserSortCopy(unsigned char *key, const char *source, uint32_t size, const unsigned char *insensitive,
                  const unsigned char *sensitive, uint32_t mode, void *user) {
    fake_copy(key, source, size, insensitive, sensitive, mode, user);
}
#endif
#if defined(WITHOUT_COMP) && defined(WITHOUT_COPY)
#error "a library without either proves nothing"
#endif
