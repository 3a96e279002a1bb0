"""Finds a shift between matched points of which one is wrong, and keeps an estimator open for a stream of them."""

import numpy as np

import esttform

pts1 = np.array([[0, 0], [100, 0], [100, 100], [0, 100], [50, 40]], dtype=float)
pts2 = pts1 + [10, 5]
pts2[4] = [300, 300]                                        # a wrong match

result = esttform.estimate(pts1, pts2, "similarity", seed=1)
print(f"{result.inlier_num} inliers, shift ({result.tform[2, 0]:g}, {result.tform[2, 1]:g})")

with esttform.Estimator("similarity", seed=1) as estimator:
    for step in range(3):
        result = estimator.step(pts1, pts2 + step)
        print(f"step {step}: points are moved to {result.map([[50, 40]]).round(6).tolist()}")
