#!/usr/bin/env python3
"""Checks the model's own ground: its random generator against the C library's
and its single-precision arithmetic against C floats."""

import ctypes
import random
import struct

import numeric


def c_float(x):
    return ctypes.c_float(x).value


def check_rand():
    libc = ctypes.CDLL(None)
    model = numeric.Random()
    libc.srand(1)
    assert [model.integer() for _ in range(5000)] == [libc.rand() for _ in range(5000)]
    for seed in (0, 1, 2, 7, 1000, 40000, 65535):
        libc.srand(seed)
        model.seed(seed)
        assert [model.integer() for _ in range(2000)] == [libc.rand() for _ in range(2000)], seed


def check_singles():
    for _ in range(50000):
        x = struct.unpack('<d', struct.pack('<Q', random.getrandbits(64)))[0]
        if x == x:
            assert numeric.f32(x) == c_float(x), x
    assert numeric.f32(3.5e38) == float('inf')
    assert str(numeric.f32(-1e-60)) == '-0.0'


def check_text():
    libc = ctypes.CDLL(None)
    buffer = ctypes.create_string_buffer(512)
    for x in (0.0, -0.0, 1.005, 2.5, -1e30, 1e39, float('inf'), float('-inf'), float('nan'),
              numeric.NEG_NAN):
        libc.snprintf(buffer, ctypes.c_size_t(512), b'%8.3f', ctypes.c_double(x))
        assert numeric.real_text(8, 3, x) == buffer.value.decode(), x


if __name__ == '__main__':
    check_rand()
    check_singles()
    check_text()
    print('ok')
