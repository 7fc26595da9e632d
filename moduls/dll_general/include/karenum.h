/// \file
/// The two enumerations that the whole library shares: failure values and object type ids.
#ifndef KAR_ENUM_H
#define KAR_ENUM_H

/// How a failure travels: 0 is success, every failure is negative. A host keeps values of its own in the same type.
enum errorCodesKARTORY : int {
    KAR_SUCCESS = 0,                 ///< no failure
    KAR_ERROR_CORNER = -7,           ///< a fillet or chamfer that can't be made
    KAR_ERROR_NO_NUMBER = -120,      ///< a text that doesn't hold a number
    KAR_ERROR_NO_METHOD = -251,      ///< a dispatcher slot without object or method
    KAR_ERROR_UNKNOWN_METHOD = -252, ///< a dispatcher without table, an object kind that nothing handles
};

/// Run-time type ids, as `GetType`, `IsType` and `CanCast` use them. A host keeps values of its own in the same type.
enum ObjektIdies : int {
    KAR_ID_PAIR = 0,                  ///< `tPair` and `tUniquePair`, both instantiations
    KAR_ID_POINT = 9,                 ///< `karPoint`
    KAR_ID_RECT = 10,                 ///< `karRect`
    KAR_ID_DIMENSION = 11,            ///< `karDimension`
    KAR_ID_D_POINT = 13,              ///< `karD_Point`
    KAR_ID_D_RECT = 14,               ///< `karD_Rect`
    KAR_ID_D_DIMENSION = 15,          ///< `karD_Dimension`
    KAR_ID_3D_BKS = 30,               ///< `kar3DBKS`
    KAR_ID_RECT_X = 46,               ///< `karRectX`
    KAR_ID_LIST_OBJECT = 60,          ///< `karListObject` and every subclass that doesn't override `GetType`
    KAR_ID_PTR_LIST_OBJECT = 61,      ///< `karPtrListObject`
    KAR_ID_LIST_OBJECT_NV = 62,       ///< `karListObjectNV`
    KAR_ID_2D_VECTOR = 101,           ///< `kar2DVector`
    KAR_ID_3D_VECTOR = 114,           ///< `kar3DVector`
    KAR_ID_MATRIX = 119,              ///< `karMatrix`
    KAR_ID_PLANE = 120,               ///< `karPlane`
    KAR_ID_TRANSFORMATION_INFO = 123, ///< `karTransformationInfo`
    KAR_ID_PAGE_MEMORY = 4001,        ///< `karPageMemory`
    KAR_ID_VAR_PAGE_MEMORY = 4005,    ///< `karVarPageMemory`
    KAR_ID_LIST_HEAD_OBJECT = 200001, ///< `karListHeadObject` and its subclasses
};

#endif
