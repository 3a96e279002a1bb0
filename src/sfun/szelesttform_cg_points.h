// Generators of the utility functions normPts and makeConstraintMatrix: the kernels of szelesttform_points.h, described.
#pragma once

#include <cstdint>
#include <string>

#include "codegen_generators.h"

/// Describes normPts_<Ti>_<Tc>: a subset of a point input, moved to its centroid and scaled.
///
/// The result is that of normPts in simulation, but for a sum of distances that is not a number: it leaves the points
/// unscaled here. When the distances sum to 0, scale is not written.
class generateNormPtsFcn : public DSPCG::LibGenerator {
public:
    /// @param inTypeId, outTypeId  data-type ids of the points read and of the computation
    /// @param inType, outType      the same as types; kept as base types
    generateNormPtsFcn(CG::Cfg* owner, int inTypeId, int outTypeId, const CG::Type* inType, const CG::Type* outType,
                       bool pointsInRows);
    ~generateNormPtsFcn() override;

    void constructBody(DSPCG::ConstructionFacade& f) override;
    const char* fcnName() const override { return mName.c_str(); }
    int getNumInputs() const override;
    const CG::Type* getInputType(int idx) const override;
    const char* getInputName(int idx) const override;
    int getNumOutputs() const override { return 0; }
    const CG::Type* getOutputType(int) const override { return nullptr; }
    const char* getOutputName(int) const override { return ""; }

private:
    int mInTypeId;
    int mOutTypeId;
    const CG::Type* mInType;
    const CG::Type* mOutType;
    bool mPointsInRows;
    std::string mName;
};

/// Describes makeConstraintMatrix_<Kind>_<T1>_<T2>: two rows of 2*sampleSize + 1 values for each point pair.
class generateMakeConstraintMatrixFcn : public DSPCG::LibGenerator {
public:
    /// @param sampleSize      2 similarity, 3 affine, 4 projective
    /// @param typeId1         data-type id of the points read
    /// @param typeId2         data-type id of the matrix
    /// @param type1, type2    the same as types; kept as base types
    generateMakeConstraintMatrixFcn(CG::Cfg* owner, std::int32_t sampleSize, int typeId1, int typeId2, const CG::Type* type1,
                                    const CG::Type* type2, bool pointsInRows);
    ~generateMakeConstraintMatrixFcn() override;

    void constructBody(DSPCG::ConstructionFacade& f) override;
    const char* fcnName() const override { return mName.c_str(); }
    int getNumInputs() const override;
    const CG::Type* getInputType(int idx) const override;
    const char* getInputName(int idx) const override;
    int getNumOutputs() const override { return 0; }
    const CG::Type* getOutputType(int) const override { return nullptr; }
    const char* getOutputName(int) const override { return ""; }

private:
    std::int32_t mSampleSize;
    int mTypeId1;
    int mTypeId2;
    const CG::Type* mType1;
    const CG::Type* mType2;
    bool mPointsInRows;
    std::string mName;
};
