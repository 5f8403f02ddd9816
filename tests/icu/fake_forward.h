/*
 * Functions of a fake that hand over to the test program, to the one of their name with "fake_" before it.
 * VERSIONED(name) is what they are exported as.
 */
#ifndef FAKE_FORWARD_H
#define FAKE_FORWARD_H

#define FORWARD(result, name, parameters, arguments)                                                         \
    result fake_##name parameters;                                                                           \
    result VERSIONED(name) parameters;                                                                       \
    result VERSIONED(name) parameters {                                                                      \
        return fake_##name arguments;                                                                        \
    }
#define FORWARD_VOID(name, parameters, arguments)                                                            \
    void fake_##name parameters;                                                                             \
    void VERSIONED(name) parameters;                                                                         \
    void VERSIONED(name) parameters {                                                                        \
        fake_##name arguments;                                                                               \
    }

#endif
