"""An independent model of the diffusion scan, written from its description with plain
Python numbers (voxel by voxel, no fast paths), for small volumes.

Volumes are numpy arrays indexed [x, y, z] with 1-based coordinates outside this module.
"""
import math

import numpy as np

NOSCAN = 8.99e307


def rnd(x):
    """Round half to even, as the program does."""
    return int(np.rint(x))


def raw_points(r):
    R = np.longdouble(r)
    pi = np.longdouble(np.pi)
    out = []
    for i in range(rnd(pi * R)):
        ring = R * np.sin(np.longdouble(i) / R)
        theta = np.longdouble(i + 1) / R
        for j in range(rnd(pi * ring)):
            phi = np.longdouble(j + 1) / ring
            out.append((rnd(R * np.sin(theta) * np.cos(phi)), rnd(R * np.sin(theta) * np.sin(phi)),
                        rnd(R * np.cos(theta))))
    return out


def heapsort(items, key):
    """The array sort: larger child, the right one only when strictly greater."""
    a = list(items)
    n = len(a)

    def sift(root, last):
        while 2 * root <= last:
            child = 2 * root
            if child + 1 <= last and key(a[child - 1]) < key(a[child]):
                child += 1
            if not key(a[root - 1]) < key(a[child - 1]):
                return
            a[root - 1], a[child - 1] = a[child - 1], a[root - 1]
            root = child

    for i in range(n // 2, 0, -1):
        sift(i, n)
    for last in range(n, 1, -1):
        a[0], a[last - 1] = a[last - 1], a[0]
        sift(1, last - 1)
    return a


def directions(r):
    raw = raw_points(r)
    if len(raw) == 1:
        kept = raw
    else:
        kept = []
        for a in range(len(raw) - 1):
            p = raw[a]
            m = (-p[0], -p[1], -p[2])
            if not any(raw[b] == p or raw[b] == m for b in range(a + 1, len(raw))):
                kept.append(p)
    return heapsort(kept, key=lambda p: p[2])


def directions2d(r):
    """The circle of the image form: the same removal of repeats, sorted by y; z = 0."""
    R = np.longdouble(r)
    raw = [(rnd(R * np.cos(np.longdouble(i + 1) / R)), rnd(R * np.sin(np.longdouble(i + 1) / R)), 0)
           for i in range(rnd(np.longdouble(np.pi) * R))]
    kept = raw if len(raw) == 1 else [p for a, p in enumerate(raw[:-1])
                                      if not any(q == p or q == (-p[0], -p[1], 0) for q in raw[a + 1:])]
    return heapsort(kept, key=lambda p: p[1])


def pixellevel(result, top=255):
    """The orientation of an image pixel as a gray level: its angle from (0, -1)."""
    a, b = angle(result, (0, -1, 0)), angle(result, (1, 0, 0))
    theta = a if b <= math.pi / 2 else 2 * math.pi - a
    return min(max(rnd(top * (theta - math.pi / 2) / math.pi), 0), top)


def value(vol, x, y, z):
    nx, ny, nz = vol.shape
    if 1 <= x <= nx and 1 <= y <= ny and 1 <= z <= nz:
        return int(vol[x - 1, y - 1, z - 1])
    return 0


def scanline(vol, p1, p2):
    D = [p2[a] - p1[a] for a in range(3)]
    steps = rnd(math.sqrt(sum(d * d for d in D)))
    if steps < 1:
        return []
    S = [rnd(D[a] / steps * 65535) for a in range(3)]

    def sample(start, sign, k):
        # A negative position shifted logically reads far outside: treat as outside.
        c = [start[a] * 65536 + sign * k * S[a] for a in range(3)]
        if any(x < 0 for x in c):
            return 0
        return value(vol, *(x >> 16 for x in c))

    out = []
    if value(vol, *p1) != 0:
        for k in range(steps + 1):
            v = sample(p1, 1, k)
            if v == 0:
                break
            out.append(v)
    elif value(vol, *p2) != 0:
        for k in range(steps + 1):
            v = sample(p2, -1, k)
            if v == 0:
                break
            out.append(v)
    else:
        started = False
        for k in range(steps + 1):
            v = sample(p1, 1, k)
            if v == 0:
                if started:
                    break
                continue
            started = True
            out.append(v)
    return out


def statistic(values, sub):
    n = len(values)
    if sub == 0:
        return float(sum(values))
    if sub == 1:
        return sum(values) / n if n else 0.0
    if sub in (3, 7):
        return float(min(values) if sub == 3 else max(values)) if n else 0.0
    if sub in (4, 5, 6):
        s = sorted(values)
        e = {4: n // 4, 5: n // 2, 6: (n // 4) * 3}[sub] + (1 if n % 2 else 0)
        return float(s[max(e, 1) - 1])
    if n < 2:
        return 0.0
    spread = n * sum(v * v for v in values) - sum(values) ** 2
    return math.sqrt(float(spread) / (float(n) * float(n - 1)))


def norm(v):
    return math.sqrt(sum(c * c for c in v))


def angle(a, b):
    la, lb = norm(a), norm(b)
    if la == 0 or lb == 0:
        return 0.0
    return math.acos(max(-1.0, min(1.0, sum(x * y for x, y in zip(a, b)) / (la * lb))))


def unit(p):
    l = norm(p)
    return tuple(c / l for c in p) if l else (0.0, 0.0, 0.0)


def linevalues(vol, p, dirs):
    return [scanline(vol, tuple(p[a] + d[a] for a in range(3)), tuple(p[a] - d[a] for a in range(3))) for d in dirs]


def voxel(vol, p, r, method=5, sub=2, fullscan=False, cone=5 * math.pi / 180, mx=0.25, dirs=None, scans=None):
    dirs = dirs if dirs is not None else directions(r)
    scans = scans if scans is not None else linevalues(vol, p, dirs)
    lines = []
    for d, vals in zip(dirs, scans):
        if len(vals) < r:
            if fullscan:
                return (0.0, 0.0, 0.0)
            continue
        lines.append((d, statistic(vals, sub)))
    zero = (0.0, 0.0, 0.0)
    add = lambda a, b: tuple(x + y for x, y in zip(a, b))
    mul = lambda a, f: tuple(x * f for x in a)
    div = lambda a, f: tuple(x / f for x in a)
    best = NOSCAN
    method = method if method in (1, 2, 3, 4, 6) else 5
    if method == 1:
        res = zero
        for d, v in lines:
            if v < best:
                best, res = v, mul(unit(d), v)
            elif v == best:
                res = zero
        return res
    if method == 2:
        res, paired = zero, False
        for d, v in lines:
            u = unit(d)
            if v < best:
                best, res, paired = v, mul(u, v), True
            elif v == best and paired:
                m = unit(res)
                if norm(add(m, mul(u, -1))) < r / 2:
                    res = div(add(res, mul(u, v)), 2)
                elif norm(add(m, u)) < r / 2:
                    res = div(add(res, mul(mul(u, -1), v)), 2)
                else:
                    res = zero
                paired = False
            elif v == best:
                res = zero
        return res
    if method == 3:
        res, n = zero, 0
        for d, v in lines:
            u = unit(d)
            if v < best:
                best, res, n = v, mul(u, v), 1
            elif v == best and n >= 1:
                a = u if not norm(add(res, u)) < norm(res) else mul(u, -1)
                res = add(res, mul(a, v))
                n += 1
        if not len(dirs) * mx > n:
            return zero
        return div(res, n) if n >= 2 else res
    mean, n, chosen, pairs = zero, 0, [], []
    for d, v in lines:
        fd = tuple(float(c) for c in d)
        if v < best:
            best, mean, n = v, fd, 1
        elif v == best and n >= 1:
            mean, n = add(mean, fd), n + 1
        pairs.append((len(chosen), v))
        chosen.append(fd)
    count = len(pairs)
    if count <= 2 or n == 0:
        return zero
    pairs = heapsort(pairs, key=lambda p: p[1])
    if not count * mx > n:
        return zero
    acc, q = zero, 1
    while True:
        idx, v = pairs[q - 1]
        e = chosen[idx]
        pos, neg = angle(mean, e), angle(mean, mul(e, -1))
        if v == best:
            if pos <= cone:
                acc = add(acc, e)
            elif neg <= cone:
                acc = add(acc, mul(e, -1))
        if method == 4:
            if not (v == best and q < count):
                break
        elif pos > cone or neg <= cone or q == count:
            break
        q += 1
    if q < 2:
        return zero
    return mul(unit(acc), best) if method == 6 else acc


def field(vol, r, settings, k=1, adaptive=False):
    """The vector fields of one scan length for a list of settings (dicts of voxel's keywords);
    the line values of each voxel are gathered once and shared by all settings."""
    dirs = directions(r)
    nx, ny, nz = vol.shape
    size = (nx // k, ny // k, nz // k)
    outs = [np.zeros(size + (3,)) for _ in settings]
    cache = {}

    def results(p):
        if p not in cache:
            scans = linevalues(vol, p, dirs)
            cache[p] = [voxel(vol, p, r, dirs=dirs, scans=scans, **kw) for kw in settings]
        return cache[p]

    retries = [(1, 1, 1), (0, 1, 1), (1, 0, 0), (1, 0, 1), (0, 1, 0), (1, 1, 0), (0, 0, 1)]
    for j in range(1, size[2] + 1 if k > 1 else nz + 1):
        z = j * k
        for y in range(1, (ny // k if k > 1 else ny) + 1):
            for x in range(1, (nx // k if k > 1 else nx) + 1):
                if not adaptive:
                    if value(vol, k * x, k * y, z) < 1:
                        continue
                    res = results((k * x, k * y, z))
                    for o, v in zip(outs, res):
                        o[x - 1, y - 1, j - 1] = v
                    continue
                if value(vol, 2 * x, 2 * y, z) < 1:
                    res = [(0.0, 0.0, 0.0)] * len(settings)
                else:
                    res = list(results((k * x, k * y, z)))
                    for i in range(len(settings)):
                        t = 0
                        while res[i] == (0.0, 0.0, 0.0) and t < 7:
                            o = retries[t]
                            res[i] = results((k * x + o[0], k * y + o[1], z + o[2]))[i]
                            t += 1
                for o, v in zip(outs, res):
                    for c in range(2):
                        for b in range(2):
                            for a in range(2):
                                q = (k * x + a, k * y + b, z + c)
                                if all(1 <= q[i] <= size[i] for i in range(3)):
                                    o[q[0] - 1, q[1] - 1, q[2] - 1] = v
    return outs
