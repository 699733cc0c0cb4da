// NSLayoutConstraint: the library's record, given working -setActive: and correct values.
#include "common/RetainPtr.h"
#include "gnustep/layout/LayoutRules.h"

using veltrix::adoptNS;

@implementation NSLayoutConstraint (LayoutSupply)

+ (instancetype)constraintWithItem:(id)firstItem
                         attribute:(NSLayoutAttribute)firstAttribute
                         relatedBy:(NSLayoutRelation)relation
                            toItem:(id)secondItem
                         attribute:(NSLayoutAttribute)secondAttribute
                        multiplier:(CGFloat)multiplier
                          constant:(CGFloat)constant {
    veltrix::RetainPtr<NSLayoutConstraint> owner = adoptNS([[self alloc] init]);
    NSLayoutConstraint* const constraint = owner.get();
    constraint->_firstItem = firstItem;
    constraint->_firstAttribute = firstAttribute;
    constraint->_relation = relation;
    constraint->_secondItem = secondItem;
    constraint->_secondAttribute = secondAttribute;
    constraint->_multiplier = multiplier;
    constraint->_constant = constant;
    constraint->_priority = NSLayoutPriorityRequired;
    return owner.autorelease();
}

+ (void)activateConstraints:(NSArray*)constraints {
    for (NSLayoutConstraint* constraint in constraints)
        [constraint setActive:YES];
}

+ (void)deactivateConstraints:(NSArray*)constraints {
    for (NSLayoutConstraint* constraint in constraints)
        [constraint setActive:NO];
}

- (BOOL)isActive {
    return veltrix::gnustep::isConstraintActive(self);
}

- (void)setActive:(BOOL)active {
    if (active)
        veltrix::gnustep::activateConstraint(self);
    else
        veltrix::gnustep::deactivateConstraint(self);
}

- (void)setPriority:(NSLayoutPriority)priority {
    _priority = priority;
}

- (void)setConstant:(CGFloat)constant {
    _constant = constant;
    veltrix::gnustep::refreshConstraint(self);
}

@end
